#include "platform/launcher/palettefactory.h"

#include <QColor>

namespace {

struct Colour
{
    QPalette::ColorRole role;
    QRgb rgb;
};

constexpr Colour kDay[] = {
    {QPalette::Window, 0xfff2f4f6},      {QPalette::WindowText, 0xff1b2733},
    {QPalette::Base, 0xffffffff},        {QPalette::AlternateBase, 0xffdfe9f2},
    {QPalette::Text, 0xff1b2733},        {QPalette::PlaceholderText, 0xff5f6b76},
    {QPalette::Button, 0xffd3dee8},      {QPalette::ButtonText, 0xff1b2733},
    {QPalette::BrightText, 0xffffffff},  {QPalette::Light, 0xffffffff},
    {QPalette::Midlight, 0xffe6ebf0},    {QPalette::Mid, 0xffb4c0cb},
    {QPalette::Dark, 0xff687581},        {QPalette::Shadow, 0xff56636f},
    {QPalette::Highlight, 0xff1f6fb2},   {QPalette::HighlightedText, 0xffffffff},
    {QPalette::Link, 0xff1a5f9e},        {QPalette::LinkVisited, 0xff5b4a8a},
    {QPalette::ToolTipBase, 0xfffff9e0}, {QPalette::ToolTipText, 0xff1b2733},
};

// What is chosen is light on dark ground, as it is dark on light ground by day.
constexpr Colour kNight[] = {
    {QPalette::Window, 0xff1b2228},      {QPalette::WindowText, 0xffe3eaf0},
    {QPalette::Base, 0xff12181d},        {QPalette::AlternateBase, 0xff222c35},
    {QPalette::Text, 0xffe3eaf0},        {QPalette::PlaceholderText, 0xff9ba8b3},
    {QPalette::Button, 0xff33414d},      {QPalette::ButtonText, 0xfff0f4f7},
    {QPalette::BrightText, 0xffffffff},  {QPalette::Light, 0xff56687a},
    {QPalette::Midlight, 0xff43525f},    {QPalette::Mid, 0xff566674},
    {QPalette::Dark, 0xff0c1115},        {QPalette::Shadow, 0xff000000},
    {QPalette::Highlight, 0xff7cc0f8},   {QPalette::HighlightedText, 0xff0b1c2b},
    {QPalette::Link, 0xff8cc4ff},        {QPalette::LinkVisited, 0xffc5b3f5},
    {QPalette::ToolTipBase, 0xff2c3944}, {QPalette::ToolTipText, 0xfff0f4f7},
};

void setAll(QPalette& palette, QPalette::ColorRole role, QRgb colour)
{
    palette.setColor(QPalette::All, role, QColor(colour));
}

void setDisabled(QPalette& palette, QRgb text, QRgb highlight, QRgb highlightedText)
{
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(text));
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(highlight));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, QColor(highlightedText));
}

QPalette application(PaletteFactory::Light light)
{
    const bool isNight = light == PaletteFactory::Light::Night;
    QPalette palette;
    for (const Colour& colour : isNight ? kNight : kDay) {
        setAll(palette, colour.role, colour.rgb);
    }
    if (isNight) {
        setDisabled(palette, 0xff8f9ca7, 0xff43525f, 0xffc3cdd6);
    } else {
        setDisabled(palette, 0xff5f6b76, 0xffb4c0cb, 0xff1b2733);
    }
    return palette;
}

/// Its Button role is the ground of the marked table row, whose text is white, and the colour of
/// the markers' lines on the chart and of the lit knob under a letter in the ButtonText role: dark
/// enough for all of them.
QPalette genericWindow(PaletteFactory::Light light)
{
    QPalette palette = application(light);
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Button, QColor(0xff527698));
        palette.setColor(group, QPalette::ButtonText, QColor(0xffffffff));
    }
    return palette;
}

QPalette chart()
{
    QPalette palette = application(PaletteFactory::Light::Day);
    setAll(palette, QPalette::Window, 0xffffffff);
    setAll(palette, QPalette::Mid, 0xffc6d0d9);
    return palette;
}

QPalette criticalButton(PaletteFactory::Light light)
{
    QPalette palette = application(light);
    setAll(palette, QPalette::Button, 0xffb3261e);
    setAll(palette, QPalette::ButtonText, 0xffffffff);
    return palette;
}

} // namespace

QPalette PaletteFactory::getPalette(const QString& name, Light light)
{
    if (name == QLatin1String("Application")) {
        return application(light);
    }
    if (name == QLatin1String("chart")) {
        return chart();
    }
    if (name == QLatin1String("table")) {
        return application(Light::Day);
    }
    if (name == QLatin1String("CriticalButton")) {
        return criticalButton(light);
    }
    return genericWindow(light);
}
