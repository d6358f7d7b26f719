#include "tests/support/allocatedbytes.h"

#include <atomic>
#include <cstdlib>

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define WAVEFORM_COUNTS_BYTES 1
#else
#define WAVEFORM_COUNTS_BYTES 0
#endif

namespace {

std::atomic<std::size_t> bytesSoFar {0};

} // namespace

namespace testing_support {

bool countsAllocatedBytes()
{
    return WAVEFORM_COUNTS_BYTES != 0;
}

std::size_t allocatedBytes()
{
    return bytesSoFar.load(std::memory_order_relaxed);
}

} // namespace testing_support

#if WAVEFORM_COUNTS_BYTES

// The heap of the whole process: what Qt allocates for its containers and pictures does not pass
// operator new. The C library lets a program put its own functions in the place of these.

extern "C" {

void* __libc_malloc(std::size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* block, std::size_t size); // NOLINT(bugprone-reserved-identifier)

void* malloc(std::size_t size)
{
    bytesSoFar.fetch_add(size, std::memory_order_relaxed);
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    bytesSoFar.fetch_add(count * size, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size)
{
    bytesSoFar.fetch_add(size, std::memory_order_relaxed);
    return __libc_realloc(block, size);
}

} // extern "C"

#endif
