#pragma once

#include <array>
#include <atomic>

namespace testing_support {

/// What the processes of a test and the test itself share about the calls seen so far.
struct NthCallState
{
    static constexpr int kMost = 1000;

    std::atomic<int> seen;
    std::array<std::array<char, 16>, kMost> names; ///< in the order of the calls
};

} // namespace testing_support
