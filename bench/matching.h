#pragma once

#include <vector>

namespace accuracy {

/// Which of the found places tells which of the true ones: each tells one at most, and each is told
/// by one at most, those that lie nearest to each other first; none from further away than the
/// reach. For each true place the number of the found one, -1 where there is none.
[[nodiscard]] std::vector<int> matched(const std::vector<double>& found,
                                       const std::vector<double>& truth, double reach);

} // namespace accuracy
