#pragma once

#include <QString>

#include <string>

namespace otdrinfo {

/// A string of a trace file (Latin-1) without the blanks around it.
[[nodiscard]] QString fromFile(const std::string& text);

/// The same for a terminal: characters that steer one become blanks.
[[nodiscard]] QString forTerminal(const std::string& text);

} // namespace otdrinfo
