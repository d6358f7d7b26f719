#pragma once

#include "programs/wfevfind/findings.h"

#include <QByteArray>

namespace evfind {

/// A line "KIND = SAMPLE" for each event but the start of the span, which the reader knows.
[[nodiscard]] QByteArray linesOf(const Findings& found);

} // namespace evfind
