#pragma once

#include <QStringList>

class QWidget;

/// The panels of the window that can be asked for by name: "events", "reflectograms",
/// "measurement".
[[nodiscard]] QStringList panelNames();

/// Shows panels of a window by their names, as a touch on their buttons would; the user's choice
/// that is remembered stays.
void showPanels(QWidget& window, const QStringList& names);
