#pragma once

#include "programs/otdrreport/commandline.h"

#include <QString>

namespace otdrreport {

/// Writes the report and its picture: each whole or not at all, the picture first. Wants a
/// QApplication.
/// \return an empty text, or in one line why there is no report
[[nodiscard]] QString generate(const Request& request);

} // namespace otdrreport
