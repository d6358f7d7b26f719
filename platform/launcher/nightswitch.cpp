#include "platform/launcher/nightswitch.h"

#include "platform/launcher/appearance.h"
#include "platform/launcher/zuconfigmodel.h"

#include <QPainter>
#include <QPainterPath>

namespace {

constexpr int kWidth = 52;

/// A sickle, open to the upper right.
QPainterPath moonIn(const QRectF& place)
{
    const double radius = place.width() / 2.0;
    QPainterPath disc;
    disc.addEllipse(place);
    QPainterPath shade;
    shade.addEllipse(place.center() + QPointF(radius * 0.55, -radius * 0.45), radius * 0.85,
                     radius * 0.85);
    return disc.subtracted(shade);
}

} // namespace

NightSwitch::NightSwitch(QWidget* parent)
    : TouchButton(QString(), parent)
    , config(ZuConfigModel::instance(nullptr, QStringLiteral("zu-launcher")))
{
    setObjectName(QStringLiteral("nightSwitch"));
    setCheckable(true);
    setToolTip(tr("Colours for the night"));
    setAccessibleName(toolTip());
    ZuSetting* night = config->setting(QStringLiteral("night"), QStringLiteral("Display"));
    setChecked(Appearance::meansNight(night->value()));
    connect(night, qOverload<const QVariant&>(&ZuSetting::changed), this,
            [this](const QVariant& value) { setChecked(Appearance::meansNight(value)); });
    connect(this, &QPushButton::clicked, night,
            [night](bool on) { night->tryChange(QVariant(on)); });
}

NightSwitch::~NightSwitch()
{
    config->freeLater();
}

QSize NightSwitch::sizeHint() const
{
    return {kWidth, TouchButton::sizeHint().height()};
}

QSize NightSwitch::minimumSizeHint() const
{
    return sizeHint();
}

void NightSwitch::paintEvent(QPaintEvent* event)
{
    TouchButton::paintEvent(event);
    constexpr double kDiameter = 20.0;
    QRectF place(0.0, 0.0, kDiameter, kDiameter);
    place.moveCenter(QRectF(rect()).center());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(moonIn(place), shownPalette().color(QPalette::ButtonText));
}
