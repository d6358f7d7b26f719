#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/sorwriter.h"
#include "tests/support/sorsketch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

namespace sor = otdr::sor;
using testing_support::Bytes;
using testing_support::ByteSketch;
using testing_support::SorSketch;

/// Small, so that every byte of it can be damaged in turn; with everything a file can hold.
SorSketch smallSketch(int version)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = version;
    sketch.samples = testing_support::fibreSamples(120, {0, 80}, 4, 80);
    sketch.fxd.frontPanelOffset = 2000;
    sketch.makers = {{"Maker", ByteSketch().text("private").done}};
    sketch.tail = ByteSketch().text("tail").done;
    return sketch;
}

/// Everything that the library computes from a file, for its crashes.
void useWhole(Bytes bytes)
{
    const auto file = otdr::readSor(std::make_shared<const Bytes>(std::move(bytes)));
    if (!file) {
        EXPECT_FALSE(file.error().message.empty());
        return;
    }
    ASSERT_FALSE(file->data.samples.empty());
    ASSERT_LE(file->data.samples.size() * 2, file->bytes->size());
    const std::string kinds = sor::eventKinds(*file);
    ASSERT_EQ(kinds.size(), file->keyEvents ? file->keyEvents->events.size() : 0);
    const sor::Axis axis = sor::axisOf(*file);
    ASSERT_FALSE(std::isinf(axis.firstSample_ns));
    ASSERT_FALSE(std::isinf(sor::spacing_m(*file)));
    const auto again = otdr::encodeSor(*file);
    ASSERT_TRUE(again.ok());
    if (file->version == 2) {
        ASSERT_EQ(*again, *file->bytes);
    } else {
        const auto reread = otdr::readSor(std::make_shared<const Bytes>(*again));
        ASSERT_TRUE(reread.ok());
        ASSERT_EQ(reread->data.samples, file->data.samples);
    }
}

class DamagedSor : public testing::TestWithParam<int>
{
};

TEST_P(DamagedSor, IsReadOrRefusedWhereverItIsCutOff)
{
    const Bytes whole = smallSketch(GetParam()).build();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        useWhole(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    }
}

TEST_P(DamagedSor, IsReadOrRefusedWhicheverByteIsWrong)
{
    const Bytes whole = smallSketch(GetParam()).build();
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const unsigned flip : {0x01U, 0x80U, 0xFFU}) {
            SCOPED_TRACE(i);
            Bytes damaged = whole;
            damaged[i] ^= static_cast<std::byte>(flip);
            useWhole(std::move(damaged));
        }
    }
}

TEST_P(DamagedSor, IsReadOrRefusedWithEveryFieldAtItsLimits)
{
    const Bytes whole = smallSketch(GetParam()).build();
    for (std::size_t i = 0; i + 4 <= whole.size(); ++i) {
        for (const std::int64_t value : {std::int64_t {0}, std::int64_t {-1},
                                         std::int64_t {0x7FFFFFFF}, std::int64_t {0x80000000}}) {
            SCOPED_TRACE(i);
            Bytes damaged = whole;
            const Bytes field = ByteSketch().u32(value).done;
            std::copy(field.begin(), field.end(), damaged.begin() + static_cast<std::ptrdiff_t>(i));
            useWhole(std::move(damaged));
        }
    }
}

TEST_P(DamagedSor, TellsAWrongByteBeforeItsChecksum)
{
    const Bytes whole = smallSketch(GetParam()).build();
    const auto good = otdr::readSor(std::make_shared<const Bytes>(whole));
    ASSERT_TRUE(good.ok());
    const auto& checksum = good->blocks.back();
    for (std::size_t i = good->blocks.front().offset; i < checksum.offset; ++i) {
        Bytes damaged = whole;
        damaged[i] ^= std::byte {0x10};
        const auto file = otdr::readSor(std::make_shared<const Bytes>(damaged));
        if (file.ok()) {
            ASSERT_EQ(sor::checksumVerdict(*file), false) << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(BothVersions, DamagedSor, testing::Values(1, 2));

} // namespace
