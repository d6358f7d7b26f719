#include "platform/launcher/fittedfont.h"

#include <QFontInfo>
#include <QFontMetrics>

QFont fittedFont(const QFont& font, const QString& text, int width_px)
{
    QFont smaller = font;
    const int full_px = QFontInfo(font).pixelSize();
    for (int size_px = full_px - 1;
         size_px >= (full_px + 1) / 2 && QFontMetrics(smaller).horizontalAdvance(text) > width_px;
         --size_px) {
        smaller.setPixelSize(size_px);
    }
    return smaller;
}
