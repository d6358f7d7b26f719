#pragma once

#include "platform/launcher/palettefactory.h"

#include <QProxyStyle>

/// How the launcher's widgets look, on whichever desktop: sizes for fingers, a focus frame that is
/// seen, and the palette that a widget names in its property "palette_id".
///
/// A widget has that palette as soon as it sets the property, so that it can take colours from it
/// while it is still being built. The focus is shown to those who use keys: from the first key on,
/// until the next touch.
class LauncherStyle : public QProxyStyle
{
    Q_OBJECT

public:
    LauncherStyle();

    /// Gives the widgets that name a palette the one for this light. The application's own is not
    /// changed.
    void setLight(PaletteFactory::Light newLight);

    using QProxyStyle::polish;
    using QProxyStyle::unpolish;
    void polish(QApplication* application) override;
    void polish(QWidget* widget) override;
    void unpolish(QApplication* application) override;

    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const override;
    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option,
                                         const QSize& size, const QWidget* widget) const override;
    [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* more) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void givePalette(QWidget& widget) const;
    void showFocus(QWidget& window, bool shown);

    PaletteFactory::Light light = PaletteFactory::Light::Day;
    bool isByKeys = false; ///< the latest input was a key
};
