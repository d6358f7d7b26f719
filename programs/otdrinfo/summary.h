#pragma once

#include "platform/otdr/core/sor.h"

#include <QString>

#include <string>

namespace otdrinfo {

/// What a file says, for a reader: parameters, event table, and what was odd about it.
[[nodiscard]] QString summaryOf(const std::string& path, const otdr::sor::File& file);

} // namespace otdrinfo
