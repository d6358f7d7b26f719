#include "bench/matching.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace accuracy {

std::vector<int> matched(const std::vector<double>& found, const std::vector<double>& truth,
                         double reach)
{
    struct Pair
    {
        std::size_t found;
        std::size_t truth;
        double away;
    };

    std::vector<Pair> pairs;
    for (std::size_t k = 0; k < truth.size(); ++k) {
        for (std::size_t i = 0; i < found.size(); ++i) {
            const double away = std::abs(found[i] - truth[k]);
            if (away <= reach) {
                pairs.push_back({i, k, away});
            }
        }
    }
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const Pair& a, const Pair& b) { return a.away < b.away; });
    std::vector<bool> isTaken(found.size(), false);
    std::vector<int> match(truth.size(), -1);
    for (const Pair& pair : pairs) {
        if (!isTaken[pair.found] && match[pair.truth] < 0) {
            isTaken[pair.found] = true;
            match[pair.truth] = static_cast<int>(pair.found);
        }
    }
    return match;
}

} // namespace accuracy
