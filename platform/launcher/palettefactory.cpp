#include "platform/launcher/palettefactory.h"

#include <QColor>

namespace {

void setAll(QPalette& palette, QPalette::ColorRole role, QRgb colour)
{
    palette.setColor(QPalette::All, role, QColor(colour));
}

QPalette application()
{
    QPalette palette;
    setAll(palette, QPalette::Window, 0xfff2f4f6);
    setAll(palette, QPalette::WindowText, 0xff1b2733);
    setAll(palette, QPalette::Base, 0xffffffff);
    setAll(palette, QPalette::AlternateBase, 0xffdfe9f2);
    setAll(palette, QPalette::Text, 0xff1b2733);
    setAll(palette, QPalette::PlaceholderText, 0xff5f6b76);
    setAll(palette, QPalette::Button, 0xffd3dee8);
    setAll(palette, QPalette::ButtonText, 0xff1b2733);
    setAll(palette, QPalette::BrightText, 0xffffffff);
    setAll(palette, QPalette::Light, 0xffffffff);
    setAll(palette, QPalette::Midlight, 0xffe6ebf0);
    setAll(palette, QPalette::Mid, 0xffb4c0cb);
    setAll(palette, QPalette::Dark, 0xff8d9aa6);
    setAll(palette, QPalette::Shadow, 0xff56636f);
    setAll(palette, QPalette::Highlight, 0xff1f6fb2);
    setAll(palette, QPalette::HighlightedText, 0xffffffff);
    setAll(palette, QPalette::Link, 0xff1a5f9e);
    setAll(palette, QPalette::LinkVisited, 0xff5b4a8a);
    setAll(palette, QPalette::ToolTipBase, 0xfffff9e0);
    setAll(palette, QPalette::ToolTipText, 0xff1b2733);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(0xff5f6b76));
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0xffb4c0cb));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, QColor(0xff1b2733));
    return palette;
}

/// Its Button role is the ground of the marked table row, whose text is white, and the colour of
/// the markers' lines on the chart: dark enough for both, yet light enough for a dark letter on it.
QPalette genericWindow()
{
    QPalette palette = application();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Button, QColor(0xff527698));
        palette.setColor(group, QPalette::ButtonText, QColor(0xffffffff));
    }
    return palette;
}

QPalette chart()
{
    QPalette palette = application();
    setAll(palette, QPalette::Window, 0xffffffff);
    setAll(palette, QPalette::Mid, 0xffc6d0d9);
    return palette;
}

QPalette criticalButton()
{
    QPalette palette = application();
    setAll(palette, QPalette::Button, 0xffb3261e);
    setAll(palette, QPalette::ButtonText, 0xffffffff);
    return palette;
}

} // namespace

QPalette PaletteFactory::getPalette(const QString& name)
{
    if (name == QLatin1String("Application")) {
        return application();
    }
    if (name == QLatin1String("chart")) {
        return chart();
    }
    if (name == QLatin1String("CriticalButton")) {
        return criticalButton();
    }
    return genericWindow();
}
