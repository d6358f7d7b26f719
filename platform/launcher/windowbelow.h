#pragma once

class QWidget;

/// The window over which a dialog is to stand that nobody gave a parent; null where there is none.
///
/// That is the active one. Where a pop-up still is, or one that was closed just now, as happens
/// without a window manager, it is the window that opened it.
[[nodiscard]] QWidget* windowBelow();

/// The same for an active window; null for null.
[[nodiscard]] QWidget* windowBelow(QWidget* active);
