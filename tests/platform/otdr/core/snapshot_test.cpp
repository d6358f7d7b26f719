#include "platform/otdr/core/snapshot.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace {

using otdr::encodeSnapshot;
using otdr::ErrorCode;
using otdr::RawSamples;
using otdr::readSnapshot;
using otdr::readSnapshotFile;
using otdr::Result;
using otdr::Snapshot;

using Bytes = std::vector<std::byte>;

Snapshot example()
{
    Snapshot snapshot;
    snapshot.sequence = 7;
    snapshot.sampleInterval_ns = 2.5;
    snapshot.firstSample_ns = -100.0;
    snapshot.averages = 0x01020304;
    snapshot.pulse_ns = 100;
    snapshot.wavelength_nm = 1550;
    snapshot.countsPerDb = 1000;
    snapshot.samples = RawSamples(std::vector<std::uint16_t> {65535, 65534, 20535, 0, 0x1234});
    return snapshot;
}

bool sameHeader(const Snapshot& a, const Snapshot& b)
{
    return a.sequence == b.sequence && a.sampleInterval_ns == b.sampleInterval_ns
        && a.firstSample_ns == b.firstSample_ns && a.averages == b.averages
        && a.pulse_ns == b.pulse_ns && a.wavelength_nm == b.wavelength_nm
        && a.countsPerDb == b.countsPerDb;
}

template <typename T>
Bytes with(Bytes bytes, std::size_t offset, T value)
{
    std::memcpy(bytes.data() + offset, &value,
                sizeof(value)); // the tests run on little-endian machines
    return bytes;
}

void expectError(const Bytes& bytes, ErrorCode code)
{
    const Result<Snapshot> result = readSnapshot(bytes);
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.error().code, code);
    EXPECT_FALSE(result.error().message.empty());
}

TEST(Snapshot, LooksByteForByteLikeItsFormat)
{
    const unsigned char expected[] = {
        'W',  'F',  'P',  'K',  0x01, 0x00, 0x30, 0x00, // magic, version, header size
        0x05, 0x00, 0x00, 0x00, 0x07, 0x00, 0x00, 0x00, // samples, sequence
        0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x04, 0x40, // 2.5
        0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x59, 0xC0, // -100.0
        0x04, 0x03, 0x02, 0x01, 0x64, 0x00, 0x00, 0x00, // averages, pulse
        0x0E, 0x06, 0xE8, 0x03, 0x2A, 0x5E, 0xC4, 0xB6, // wavelength, counts per dB, checksum
        0x00, 0x00, 0x01, 0x00, 0xC8, 0xAF, 0xFF, 0xFF,
        0xCB, 0xED, // level counts 0, 1, 45000, 65535, 60875
    };
    const Bytes found = encodeSnapshot(example());
    ASSERT_EQ(found.size(), sizeof(expected));
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(std::to_integer<unsigned>(found[i]), expected[i]) << "byte " << i;
    }
}

TEST(Snapshot, IsReadAsItWasWritten)
{
    const Result<Snapshot> result = readSnapshot(encodeSnapshot(example()));
    ASSERT_TRUE(result.ok());
    EXPECT_TRUE(sameHeader(*result, example()));
    EXPECT_EQ(result->samples, example().samples);
}

TEST(Snapshot, LevelCountsOfTheFileBecomeCountsBelowTheReference)
{
    // A level of 45 dB is 45000 in the file, and 45 dB on the axis of every trace: (65535 - raw) *
    // 0.001.
    const Bytes bytes = encodeSnapshot(example());
    EXPECT_EQ(std::to_integer<unsigned>(bytes[52]) + 256 * std::to_integer<unsigned>(bytes[53]),
              45000U);
    const Result<Snapshot> result = readSnapshot(bytes);
    ASSERT_TRUE(result.ok());
    EXPECT_NEAR((65535 - result->samples[2]) * result->dbPerCount(), 45.0, 1e-9);
}

TEST(Snapshot, ScaleFollowsTheCountsPerDecibel)
{
    Snapshot snapshot = example();
    snapshot.countsPerDb = 500;
    EXPECT_DOUBLE_EQ(readSnapshot(encodeSnapshot(snapshot))->dbPerCount(), 0.002);
}

TEST(Snapshot, WithoutSamplesIsStillOne)
{
    Snapshot snapshot = example();
    snapshot.samples = RawSamples();
    const Result<Snapshot> result = readSnapshot(encodeSnapshot(snapshot));
    ASSERT_TRUE(result.ok());
    EXPECT_TRUE(result->samples.empty());
}

TEST(Snapshot, CutAnywhereIsRefused)
{
    const Bytes whole = encodeSnapshot(example());
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const Result<Snapshot> result = readSnapshot(part);
        ASSERT_FALSE(result.ok()) << size << " bytes";
        EXPECT_EQ(result.error().code, size < 4 ? ErrorCode::NotATrace : ErrorCode::Damaged);
    }
}

TEST(Snapshot, WithBytesBehindItsSamplesIsRefused)
{
    Bytes bytes = encodeSnapshot(example());
    bytes.push_back(std::byte {0});
    expectError(bytes, ErrorCode::Damaged);
    bytes.push_back(std::byte {0});
    expectError(bytes, ErrorCode::Damaged);
}

TEST(Snapshot, WithAFlippedByteIsRefusedOrDiffersInThatFieldAlone)
{
    const Bytes whole = encodeSnapshot(example());
    std::size_t refused = 0;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        Bytes bytes = whole;
        bytes[i] ^= std::byte {0xff};
        const Result<Snapshot> result = readSnapshot(bytes);
        const bool guarded = i < 12 || i >= 44; // magic, version, sizes; checksum, samples
        if (guarded) {
            EXPECT_FALSE(result.ok()) << "byte " << i;
        }
        if (result.ok()) {
            EXPECT_FALSE(sameHeader(*result, example())) << "byte " << i;
            EXPECT_EQ(result->samples, example().samples) << "byte " << i;
        }
        refused += result.ok() ? 0 : 1;
    }
    EXPECT_GE(refused, whole.size() - 32);
}

TEST(Snapshot, WithAnyFlippedBitInItsSamplesIsRefused)
{
    const Bytes whole = encodeSnapshot(example());
    for (std::size_t bit = 8 * Snapshot::kHeaderSize; bit < 8 * whole.size(); ++bit) {
        Bytes bytes = whole;
        bytes[bit / 8] ^= static_cast<std::byte>(1U << (bit % 8));
        expectError(bytes, ErrorCode::Damaged);
    }
}

TEST(Snapshot, WithoutTheMagicIsNoTraceFile)
{
    expectError({}, ErrorCode::NotATrace);
    expectError(Bytes(1000, std::byte {0}), ErrorCode::NotATrace);
    expectError(with(encodeSnapshot(example()), 0, 'M'), ErrorCode::NotATrace);
}

TEST(Snapshot, OfAnotherVersionOrHeaderSizeIsRefused)
{
    expectError(with(encodeSnapshot(example()), 4, std::uint16_t {2}), ErrorCode::Damaged);
    expectError(with(encodeSnapshot(example()), 6, std::uint16_t {50}), ErrorCode::Damaged);
}

TEST(Snapshot, WithAnImpossibleTimeAxisIsRefused)
{
    const Bytes good = encodeSnapshot(example());
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double interval : {0.0, -1.0, infinite, -infinite, std::nan("")}) {
        expectError(with(good, 16, interval), ErrorCode::Damaged);
    }
    for (const double first : {infinite, -infinite, std::nan("")}) {
        expectError(with(good, 24, first), ErrorCode::Damaged);
    }
    EXPECT_TRUE(readSnapshot(with(good, 24, 0.0)).ok());
}

TEST(Snapshot, WithoutCountsPerDecibelIsRefused)
{
    expectError(with(encodeSnapshot(example()), 42, std::uint16_t {0}), ErrorCode::Damaged);
}

TEST(Snapshot, ThatClaimsMoreSamplesThanAnyTraceHasIsTooLarge)
{
    const Bytes good = encodeSnapshot(example());
    expectError(with(good, 8, static_cast<std::uint32_t>(Snapshot::kMostSamples + 1)),
                ErrorCode::TooLarge);
    expectError(with(good, 8, std::uint32_t {0xffffffff}), ErrorCode::TooLarge);
    expectError(with(good, 8, static_cast<std::uint32_t>(Snapshot::kMostSamples)),
                ErrorCode::Damaged);
}

/// A folder of its own that goes with the test.
class SnapshotFile : public testing::Test
{
protected:
    SnapshotFile() { std::filesystem::create_directories(folder); }

    ~SnapshotFile() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    [[nodiscard]] std::filesystem::path write(const Bytes& bytes) const
    {
        std::ofstream file(folder / "snapshot", std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return folder / "snapshot";
    }

    std::filesystem::path folder = std::filesystem::path(testing::TempDir())
        / ("waveform-snapshot-" + std::to_string(getpid()));
};

TEST_F(SnapshotFile, IsReadFromDisk)
{
    const Result<Snapshot> result = readSnapshotFile(write(encodeSnapshot(example())));
    ASSERT_TRUE(result.ok());
    EXPECT_TRUE(sameHeader(*result, example()));
    EXPECT_EQ(result->samples, example().samples);
}

TEST_F(SnapshotFile, ThatIsMissingOrAFolderCannotBeOpened)
{
    EXPECT_EQ(readSnapshotFile(folder / "nothing").error().code, ErrorCode::CannotOpen);
    EXPECT_EQ(readSnapshotFile(folder).error().code, ErrorCode::CannotOpen);
    EXPECT_EQ(readSnapshotFile("").error().code, ErrorCode::CannotOpen);
    EXPECT_EQ(readSnapshotFile("/dev/zero").error().code, ErrorCode::CannotOpen);
}

TEST_F(SnapshotFile, ThatIsAPipeIsRefusedWithoutWaitingForIt)
{
    const std::filesystem::path pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(readSnapshotFile(pipe).error().code, ErrorCode::CannotOpen);
}

TEST_F(SnapshotFile, ThatIsEmptyIsNoTrace)
{
    EXPECT_EQ(readSnapshotFile(write({})).error().code, ErrorCode::NotATrace);
}

TEST_F(SnapshotFile, ThatCannotBeReadIsNamedInTheError)
{
    Bytes bytes = encodeSnapshot(example());
    bytes.back() = ~bytes.back();
    const std::filesystem::path path = write(bytes);
    EXPECT_EQ(readSnapshotFile(path).error().message.find(path.string() + ": "), 0U);
    EXPECT_EQ(readSnapshotFile(path).error().offset, 44U);
    const std::filesystem::path missing = folder / "nothing";
    EXPECT_EQ(readSnapshotFile(missing).error().message.find(missing.string() + ": "), 0U);
}

TEST_F(SnapshotFile, ThatIsReplacedAllTheTimeIsTheOldOrTheNewOne)
{
    Snapshot longer = example();
    longer.samples = RawSamples(std::vector<std::uint16_t>(5000, 7));
    const std::array<Bytes, 2> contents {encodeSnapshot(example()), encodeSnapshot(longer)};
    const std::filesystem::path file = write(contents[0]);
    std::atomic<bool> stop {false};
    std::thread writer([&] {
        for (std::size_t i = 0; !stop; ++i) {
            std::ofstream(folder / "next", std::ios::binary)
                .write(reinterpret_cast<const char*>(contents[i % 2].data()),
                       static_cast<std::streamsize>(contents[i % 2].size()));
            std::filesystem::rename(folder / "next", file);
        }
    });
    for (int i = 0; i < 2000; ++i) {
        const Result<Snapshot> result = readSnapshotFile(file);
        EXPECT_TRUE(result.ok()) << result.error().message;
        if (!result.ok()) {
            break;
        }
    }
    stop = true;
    writer.join();
}

TEST_F(SnapshotFile, ThatIsHugeIsRefusedUnread)
{
    const std::filesystem::path path = write(encodeSnapshot(example()));
    std::filesystem::resize_file(path,
                                 Snapshot::kHeaderSize + 2 * Snapshot::kMostSamples + 1); // a hole
    EXPECT_EQ(readSnapshotFile(path).error().code, ErrorCode::TooLarge);
}

} // namespace
