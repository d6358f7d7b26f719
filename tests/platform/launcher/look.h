#pragma once

#include "platform/launcher/launcherstyle.h"

#include <QApplication>
#include <QStyleFactory>
#include <QToolTip>

namespace testing_support {

/// What a test does to the look of the application does not outlive it.
class LookKept
{
public:
    LookKept() = default;

    ~LookKept()
    {
        QApplication::setStyle(QStyleFactory::create(style));
        QApplication::setPalette(palette);
        QApplication::setFont(font);
        QToolTip::setPalette(toolTip);
    }

    LookKept(const LookKept&) = delete;
    LookKept& operator=(const LookKept&) = delete;

private:
    const QString style = QApplication::style()->objectName();
    const QPalette palette = QApplication::palette();
    const QFont font = QApplication::font();
    const QPalette toolTip = QToolTip::palette();
};

/// The launcher's style in its light, without a configuration, while a test lasts.
class LookIn
{
public:
    explicit LookIn(PaletteFactory::Light light)
    {
        auto* style = new LauncherStyle;
        QApplication::setStyle(style);
        QApplication::setPalette(PaletteFactory::getPalette("Application", light));
        style->setLight(light);
    }

private:
    const LookKept before;
};

} // namespace testing_support
