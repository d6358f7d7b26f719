#pragma once

#include "platform/otdr/core/sor.h"

#include <QByteArray>

#include <string>

namespace otdrinfo {

/// What a file says as one line of JSON, without the line's end. A value that the file does not
/// give is null.
[[nodiscard]] QByteArray jsonOf(const std::string& path, const otdr::sor::File& file);

} // namespace otdrinfo
