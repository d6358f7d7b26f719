#pragma once

#include "programs/wfevfind/findings.h"

#include <QByteArray>

namespace evfind {

/// Everything found as one line of JSON, without the line's end. A value that is not known is null.
[[nodiscard]] QByteArray jsonOf(const Findings& found);

} // namespace evfind
