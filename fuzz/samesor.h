#pragma once

#include "platform/otdr/core/sor.h"

namespace fuzz {

/// Stops the target unless a file that was written and read again has the values of the one
/// written.
///
/// What the format cannot say may differ: an empty text comes back as a blank, no pulse as one of
/// width 0, and distances that were 0 may have been worked out.
void claimSameValues(const otdr::sor::File& written, const otdr::sor::File& read);

} // namespace fuzz
