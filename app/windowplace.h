#pragma once

#include <QRect>
#include <QString>
#include <QVector>

#include <optional>

/// Where a window stands: its place among the others, and whether it fills the screen instead.
struct WindowPlace
{
    QRect rect; ///< without the frame that the desktop draws
    bool fillsScreen = false;

    [[nodiscard]] bool operator==(const WindowPlace& other) const
    {
        return rect == other.rect && fillsScreen == other.fillsScreen;
    }
};

/// As it is kept, such as "1280x800+20+40 filled".
[[nodiscard]] QString toText(const WindowPlace& place);

/// Nothing where the text does not tell a place.
[[nodiscard]] std::optional<WindowPlace> windowPlace(const QString& text);

/// The place on the screens there are now: wholly on the one that it covers most of, no larger than
/// that, and filling an instrument's. Without a wish, or with one for a screen that has gone, the
/// usual size in the middle of the first.
///
/// \param screens what windows may use of each; one at least, the user's own first
[[nodiscard]] WindowPlace placeOn(const QVector<QRect>& screens,
                                  const std::optional<WindowPlace>& wish, const QSize& usual);
