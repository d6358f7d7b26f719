#include "app/windowplace.h"

#include <QRegularExpression>

#include <algorithm>

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
    static const QRegularExpression form(
        R"(^(\d{2,5})x(\d{2,5})\+(-?\d{1,5})\+(-?\d{1,5})( filled)?$)");
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const auto number = [&match](int group) { return match.captured(group).toInt(); };
    return WindowPlace {QRect(number(3), number(4), number(1), number(2)),
                        match.captured(5) == kFilled};
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
