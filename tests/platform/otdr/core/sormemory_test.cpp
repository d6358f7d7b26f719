#include "platform/otdr/core/sorreader.h"
#include "tests/support/sorsketch.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> inUse {0};
std::atomic<std::size_t> highest {0};

void* allocate(std::size_t size)
{
    void* block = std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    const std::size_t now = inUse += ::malloc_usable_size(block);
    highest = std::max(highest.load(), now);
    return block;
}

void release(void* block)
{
    if (block != nullptr) {
        inUse -= ::malloc_usable_size(block);
        std::free(block);
    }
}

} // namespace

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void operator delete(void* block) noexcept
{
    release(block);
}

void operator delete[](void* block) noexcept
{
    release(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    release(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept
{
    release(block);
}

namespace {

using testing_support::Bytes;
using testing_support::ByteSketch;
using testing_support::SorSketch;

constexpr std::size_t kLarge = std::size_t {4} << 20U;

/// Most memory that reading takes beside the file itself.
std::size_t memoryFor(const Bytes& bytes)
{
    const auto shared = std::make_shared<const Bytes>(bytes);
    const std::size_t before = inUse;
    highest = before;
    const auto file = otdr::readSor(shared);
    EXPECT_TRUE(file.ok()) << file.error().message;
    return highest - before;
}

std::size_t allowed(const Bytes& bytes)
{
    // The file itself is one of the eight.
    return (std::size_t {16} << 20U) + 7 * bytes.size();
}

Bytes withBlock(std::size_t index, Bytes body, int version = 2)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = version;
    auto blocks = sketch.blocks();
    blocks[index].body = std::move(body);
    return SorSketch::assemble(version, blocks);
}

TEST(SorMemory, StaysBoundedForAPlainTrace)
{
    const Bytes bytes = withBlock(
        4, ByteSketch().u32(kLarge / 2).u16(1).u32(kLarge / 2).u16(1000).bytes(Bytes(kLarge)).done);
    EXPECT_LT(memoryFor(bytes), 2 * bytes.size());
}

TEST(SorMemory, StaysBoundedForClaimsThatTheFileDoesNotKeep)
{
    const Bytes samples =
        withBlock(4, ByteSketch().u32(0xFFFFFFFF).u16(0xFFFF).u32(0xFFFFFFFF).u16(1).u16(5).done);
    EXPECT_LT(memoryFor(samples), std::size_t {1} << 20U);
    const Bytes events = withBlock(3, ByteSketch().u16(0xFFFF).done);
    EXPECT_LT(memoryFor(events), std::size_t {1} << 20U);
}

TEST(SorMemory, StaysBoundedForAsManyEventsAsCanBe)
{
    // All zero: events with empty comments, the smallest there are.
    const Bytes bytes =
        withBlock(3, ByteSketch().u16(0xFFFF).bytes(Bytes(std::size_t {65535} * 23U)).done, 1);
    EXPECT_LT(memoryFor(bytes), allowed(bytes));
}

TEST(SorMemory, StaysBoundedForAsManySectionsAsCanBe)
{
    ByteSketch body;
    body.u32(65'535).u16(0xFFFF);
    for (int i = 0; i < 65'535; ++i) {
        body.u32(1).u16(0).u16(7);
    }
    const Bytes bytes = withBlock(4, body.done);
    EXPECT_LT(memoryFor(bytes), allowed(bytes));
}

TEST(SorMemory, StaysBoundedForALargeTraceInSections)
{
    ByteSketch body;
    body.u32(kLarge).u16(2);
    body.u32(kLarge / 2)
        .u16(1000)
        .bytes(Bytes(kLarge))
        .u32(kLarge / 2)
        .u16(999)
        .bytes(Bytes(kLarge));
    const Bytes bytes = withBlock(4, body.done);
    EXPECT_LT(memoryFor(bytes), allowed(bytes));
}

TEST(SorMemory, StaysBoundedForOneEndlessString)
{
    const Bytes bytes = withBlock(1, Bytes(kLarge, std::byte {'x'}));
    EXPECT_LT(memoryFor(bytes), allowed(bytes));
}

} // namespace
