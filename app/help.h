#pragma once

#include <QString>

class QWidget;

/// What the application tells about itself.
namespace help {

/// The help page: gestures and keys, what the buttons do, where files go.
[[nodiscard]] QString page();

/// Version, purpose, libraries.
[[nodiscard]] QString about();

/// Shows the help page over a window, or the one that is shown already; from there leads a button
/// to what the application is.
void show(QWidget* over);

} // namespace help
