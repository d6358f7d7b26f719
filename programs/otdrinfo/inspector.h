#pragma once

#include "programs/otdrinfo/commandline.h"

namespace otdrinfo {

/// Does what was asked: results to standard output, one line for each failure to standard error.
///
/// A bad file does not keep the others from being shown. Answers the exit code: 0, or 1 where
/// anything failed.
[[nodiscard]] int inspect(const Request& request);

} // namespace otdrinfo
