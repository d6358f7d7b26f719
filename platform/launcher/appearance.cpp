#include "platform/launcher/appearance.h"

#include "platform/launcher/launcherstyle.h"
#include "platform/launcher/palettefactory.h"
#include "platform/launcher/zuconfigmodel.h"

#include <QApplication>
#include <QToolTip>

Appearance::Appearance(QObject* parent)
    : QObject(parent)
    , config(ZuConfigModel::instance(nullptr, QStringLiteral("zu-launcher")))
    , style(new LauncherStyle)
{
    QApplication::setStyle(style);
    QApplication::setFont(textFont(QApplication::font()));
    ZuSetting* night = config->setting(QStringLiteral("night"), QStringLiteral("Display"));
    connect(night, qOverload<const QVariant&>(&ZuSetting::changed), this,
            [this](const QVariant& value) { showLight(meansNight(value)); });
    showLight(meansNight(night->value()));
}

Appearance::~Appearance()
{
    config->freeLater();
    QCoreApplication::sendPostedEvents(config, QEvent::DeferredDelete); // no event loop follows
}

QFont Appearance::textFont(const QFont& sizedAs)
{
    QFont font = sizedAs;
    font.setFamilies({QStringLiteral("Liberation Sans"), QStringLiteral("DejaVu Sans"),
                      QStringLiteral("Noto Sans"), QStringLiteral("sans-serif")});
    font.setStyleHint(QFont::SansSerif);
    return font;
}

bool Appearance::meansNight(const QVariant& value)
{
    // What the settings know comes as their table has it; any other text would be "true" as well.
    return value.userType() == QMetaType::Bool && value.toBool();
}

void Appearance::showLight(bool isNight)
{
    const auto light = isNight ? PaletteFactory::Light::Night : PaletteFactory::Light::Day;
    const QPalette palette = PaletteFactory::getPalette(QStringLiteral("Application"), light);
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette); // has one of its own
    style->setLight(light);
}
