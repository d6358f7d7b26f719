#pragma once

#include <cstddef>

namespace testing_support {

/// Whether allocatedBytes() counts: not where a sanitizer has the heap.
[[nodiscard]] bool countsAllocatedBytes();

/// Bytes that the whole process, its libraries included, has asked the heap for so far; what was
/// given back is not taken off.
[[nodiscard]] std::size_t allocatedBytes();

} // namespace testing_support
