#pragma once

#include <QString>

/// The ways to tell why the application cannot start, or go on.
namespace stopping {

/// Whether a window could be shown somewhere, as far as that is known before Qt tries.
[[nodiscard]] bool hasDisplay();

/// Prints the problem on standard error. \return the exit code that goes with it
int fail(const QString& problem);

/// As fail(); where somebody sees the screen also in a dialog, until that is closed. Needs the
/// application object.
int failOnScreen(const QString& problem);

} // namespace stopping
