#pragma once

#include <QString>

class QWidget;

/// Saves a picture of a window as PNG once everything that is computed in the background is shown.
/// False where the file cannot be written.
[[nodiscard]] bool savePicture(QWidget& window, const QString& file);
