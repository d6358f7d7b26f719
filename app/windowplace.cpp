#include "app/windowplace.h"

#include <algorithm>
#include <cstdio>

namespace {

/// A screen that is lower is an instrument's, on which there is one window.
constexpr int kLeastDesktopHeight = 600;

/// What the desktop draws around a window; only the upper edge matters, by which it is moved.
constexpr int kTitleBar = 32;

const QString kFilled = " filled";

bool isInstrument(const QRect& screen)
{
    return screen.height() < kLeastDesktopHeight;
}

int areaOf(const QRect& rect)
{
    return rect.width() * rect.height();
}

QRect middleOf(const QRect& screen, const QSize& size)
{
    QRect rect(QPoint(), size.boundedTo(screen.size()));
    rect.moveCenter(screen.center());
    return rect;
}

QRect keptInside(const QRect& screen, QRect rect)
{
    rect.setSize(rect.size().boundedTo(screen.size()));
    const int top = std::min(screen.top() + kTitleBar, screen.bottom() + 1 - rect.height());
    rect.moveLeft(std::clamp(rect.left(), screen.left(), screen.right() + 1 - rect.width()));
    rect.moveTop(std::clamp(rect.top(), top, screen.bottom() + 1 - rect.height()));
    return rect;
}

} // namespace

QString toText(const WindowPlace& place)
{
    const QRect& rect = place.rect;
    const QString text =
        QString("%1x%2+%3+%4").arg(rect.width()).arg(rect.height()).arg(rect.x()).arg(rect.y());
    return place.fillsScreen ? text + kFilled : text;
}

std::optional<WindowPlace> windowPlace(const QString& text)
{
    constexpr int kLeastSide = 10;
    QSize size;
    QPoint corner;
    const int numbers = std::sscanf(text.toUtf8().constData(), "%5dx%5d+%6d+%6d", &size.rwidth(),
                                    &size.rheight(), &corner.rx(), &corner.ry());
    const WindowPlace place {QRect(corner, size), text.endsWith(kFilled)};
    // The form is read loosely, so it must be the one that is written.
    const bool isPlace = numbers == 4 && toText(place) == text;
    return isPlace && qMin(size.width(), size.height()) >= kLeastSide ? std::optional(place)
                                                                      : std::nullopt;
}

WindowPlace placeOn(const QVector<QRect>& screens, const std::optional<WindowPlace>& wish,
                    const QSize& usual)
{
    const auto common = [&](const QRect& screen) {
        return wish ? areaOf(screen.intersected(wish->rect)) : 0;
    };
    const QRect& screen =
        *std::max_element(screens.begin(), screens.end(),
                          [&](const QRect& a, const QRect& b) { return common(a) < common(b); });
    if (isInstrument(screen)) { // where nobody may be who could maximise a window
        return {screen, true};
    }
    if (common(screen) == 0) {
        return {middleOf(screens.first(), wish ? wish->rect.size() : usual),
                wish && wish->fillsScreen};
    }
    return {keptInside(screen, wish->rect), wish->fillsScreen};
}
