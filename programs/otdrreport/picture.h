#pragma once

#include "platform/otdr/reflectogram.h"
#include "programs/otdrreport/report.h"

#include <QByteArray>

namespace otdrreport {

/// The trace as the screen draws it, with a numbered mark at each event, as a PNG of 1280 x 640.
///
/// Wants a QApplication. Empty where the picture could not be made.
[[nodiscard]] QByteArray pictureOf(const Reflectogram& refl, const Report& report);

} // namespace otdrreport
