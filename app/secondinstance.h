#pragma once

#include <QString>

struct Options;

/// What an instance does that finds another one running.
namespace secondinstance {

/// Hands the files over to the running one, which comes to the front, and says so on standard
/// output.
/// \return an empty text, or why that cannot be
[[nodiscard]] QString handOver(const Options& options);

} // namespace secondinstance
