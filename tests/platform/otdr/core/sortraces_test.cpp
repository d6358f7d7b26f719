// Files written by real instruments; skipped where they are not beside the checkout.
#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/sorwriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace {

namespace fs = std::filesystem;
namespace sor = otdr::sor;
using Bytes = std::vector<std::byte>;

struct Trace
{
    std::string name;
    sor::File file;
};

class RealTraces : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!fs::is_directory(WAVEFORM_TRACES)) {
            GTEST_SKIP() << "no real traces beside this checkout";
        }
        for (const auto& entry : fs::directory_iterator(WAVEFORM_TRACES)) {
            if (entry.path().extension() == ".sor") {
                auto file = otdr::readSorFile(entry.path().string());
                ASSERT_TRUE(file.ok()) << file.error().message;
                traces.push_back({entry.path().filename().string(), std::move(*file)});
            }
        }
        ASSERT_FALSE(traces.empty());
    }

    std::vector<Trace> traces;
};

bool hasBlock(const sor::File& file, const std::string& name)
{
    return std::any_of(file.blocks.begin(), file.blocks.end(),
                       [&](const sor::RawBlock& block) { return block.name == name; });
}

bool isExfo(const sor::File& file)
{
    return hasBlock(file, "ExfoNewProprietaryBlock 01");
}

sor::File reread(const sor::File& file)
{
    auto bytes = otdr::encodeSor(file);
    EXPECT_TRUE(bytes.ok());
    auto again = otdr::readSor(std::make_shared<const Bytes>(std::move(*bytes)));
    EXPECT_TRUE(again.ok());
    return *again;
}

/// Sample index of a time in counts from the user's zero, on the axis of the file.
double indexOf(const sor::Axis& axis, std::int32_t position)
{
    return (position * 0.2 - axis.firstSample_ns) / axis.sampleInterval_ns;
}

TEST_F(RealTraces, AreWhollyReadable)
{
    for (const auto& [name, file] : traces) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(file.hasGen && file.hasSup && file.hasFxd);
        EXPECT_GT(file.data.samples.size(), 1000U);
        EXPECT_GT(sor::nominalWavelength_nm(file), 800);
        EXPECT_NEAR(sor::actualWavelength_nm(file), sor::nominalWavelength_nm(file), 15.0);
        EXPECT_GT(sor::pulse_ns(file), 0.0);
        // The range and the samples agree to some per cent where the spacing is right.
        const double length_m =
            sor::spacing_m(file) * static_cast<double>(file.data.samples.size());
        EXPECT_NEAR(length_m / sor::range_m(file), 1.0, 0.15);
        for (const std::string& note : file.notes) {
            EXPECT_NE(note.find("follow the last block"), std::string::npos) << note;
        }
    }
}

TEST_F(RealTraces, GoBackByteForByte)
{
    for (const auto& [name, file] : traces) {
        if (file.version == 2) {
            EXPECT_EQ(*otdr::encodeSor(file), *file.bytes) << name;
        }
    }
}

void expectSameTrace(const sor::File& a, const sor::File& b)
{
    EXPECT_EQ(a.data.samples, b.data.samples);
    EXPECT_EQ(a.data.scaleFactor, b.data.scaleFactor);
    EXPECT_EQ(a.gen.wavelength_nm, b.gen.wavelength_nm);
    EXPECT_EQ(a.gen.userOffset, b.gen.userOffset);
    EXPECT_EQ(a.sup.moduleId, b.sup.moduleId);
    EXPECT_EQ(a.fxd.dateTime_s, b.fxd.dateTime_s);
    EXPECT_EQ(a.fxd.pulses[0].dataSpacing, b.fxd.pulses[0].dataSpacing);
    EXPECT_EQ(a.fxd.frontPanelOffset, b.fxd.frontPanelOffset);
    EXPECT_EQ(a.fxd.groupIndex, b.fxd.groupIndex);
    EXPECT_EQ(sor::eventKinds(a), sor::eventKinds(b));
    for (std::size_t i = 0; i < sor::eventKinds(a).size(); ++i) {
        EXPECT_EQ(a.keyEvents->events[i].position, b.keyEvents->events[i].position);
        EXPECT_EQ(a.keyEvents->events[i].loss, b.keyEvents->events[i].loss);
        EXPECT_EQ(a.keyEvents->events[i].reflectance, b.keyEvents->events[i].reflectance);
        EXPECT_EQ(a.keyEvents->events[i].markers, b.keyEvents->events[i].markers);
    }
}

TEST_F(RealTraces, KeepTheirTraceWhenTheyAreEncodedAnew)
{
    for (const auto& [name, file] : traces) {
        SCOPED_TRACE(name);
        sor::File changed = file;
        changed.gen.comment = "looked at";
        const sor::File again = reread(changed);
        expectSameTrace(file, again);
        EXPECT_EQ(again.gen.comment, "looked at");
        EXPECT_EQ(again.checksum, sor::Checksum::Matches);
        sor::File bare = file; // as if it had never been a file
        bare.bytes.reset();
        bare.blocks.clear();
        expectSameTrace(file, reread(bare));
    }
}

TEST_F(RealTraces, HaveTheChecksumsOfTheirMakers)
{
    for (const auto& [name, file] : traces) {
        const bool isUncomputed = file.sup.supplier == "FIBERCLOUD";
        const auto expected = isExfo(file) ? sor::Checksum::Unknown
            : isUncomputed                 ? sor::Checksum::NotComputed
                                           : sor::Checksum::Matches;
        EXPECT_EQ(file.checksum, expected) << name;
    }
}

/// Where the steepest rise within 40 samples of an index stands, and how far the level rises in
/// all.
std::pair<double, double> edgeNear(const otdr::RawSamples& samples, double index, int width)
{
    const int middle = static_cast<int>(std::lround(index));
    const int last = static_cast<int>(samples.size()) - 1;
    int steepest = 0;
    int best = 0;
    for (int i = std::max(middle - 40, 1); i < std::min(middle + 40, last); ++i) {
        const int rise = samples[i - 1] - samples[i];
        if (rise > best) {
            best = rise;
            steepest = i;
        }
    }
    const auto* from = samples.begin() + std::clamp(middle - width - 5, 0, last);
    const auto* at = samples.begin() + std::clamp(middle - 1, 0, last);
    const auto* to = samples.begin() + std::clamp(middle + width + 6, 0, last);
    const double rise =
        from < at ? (*std::min_element(from, at) - *std::min_element(at, to)) / 1000.0 : 0.0;
    return {steepest - index, rise};
}

TEST_F(RealTraces, HaveTheirReflectiveEdgesAtTheIndicesOfTheirEvents)
{
    int checked = 0;
    for (const auto& [name, file] : traces) {
        if (!file.keyEvents) {
            continue;
        }
        const sor::Axis axis = sor::axisOf(file);
        const int width =
            static_cast<int>(std::lround(sor::pulse_ns(file) / axis.sampleInterval_ns));
        for (const sor::KeyEvent& event : file.keyEvents->events) {
            const double index = indexOf(axis, event.position);
            const auto [delay, rise] = edgeNear(file.data.samples, index, width);
            if (event.code[0] == '0' || index < 10 || rise < 3.0) {
                continue;
            }
            ++checked;
            EXPECT_GE(delay, -1.0) << name << " event " << event.number;
            EXPECT_LE(delay, 12.0) << name << " event " << event.number;
        }
    }
    EXPECT_GE(checked, 20);
}

TEST_F(RealTraces, ContradictTheirOffsetsInOneFileOnly)
{
    int contradicting = 0;
    for (const auto& [name, file] : traces) {
        if (!sor::axisOf(file).note.empty()) {
            ++contradicting;
            // Cut by other software than wrote it: both makers show.
            EXPECT_TRUE(isExfo(file)) << name;
            EXPECT_EQ(file.sup.supplier, "Noyes") << name;
        }
    }
    EXPECT_EQ(contradicting, 1);
}

/// Level at an index by a straight line fitted to the samples between two others, dB below the
/// reference.
double lineAt(const otdr::RawSamples& samples, int from, int to, double index)
{
    double n = 0;
    double sx = 0;
    double sy = 0;
    double sxx = 0;
    double sxy = 0;
    for (int i = from; i <= to; ++i) {
        const double x = i - index;
        const double y = samples[i] / 1000.0;
        n += 1;
        sx += x;
        sy += y;
        sxx += x * x;
        sxy += x * y;
    }
    return (sy * sxx - sx * sxy) / (n * sxx - sx * sx);
}

TEST_F(RealTraces, GiveTheStoredLossesByLeastSquaresBetweenTheStoredMarkers)
{
    std::vector<double> deviations_dB;
    for (const auto& [name, file] : traces) {
        if (!isExfo(file) || !sor::axisOf(file).note.empty()) {
            continue;
        }
        const sor::Axis axis = sor::axisOf(file);
        for (const sor::KeyEvent& event : file.keyEvents->events) {
            std::array<int, 4> at {};
            std::transform(event.markers.begin(), event.markers.begin() + 4, at.begin(),
                           [&](std::int32_t marker) {
                               return static_cast<int>(std::lround(indexOf(axis, marker)));
                           });
            const bool hasWindows = at[0] >= 0 && at[1] - at[0] >= 3 && at[3] - at[2] >= 3
                && at[3] < static_cast<int>(file.data.samples.size());
            if (event.technique[0] != 'L' || event.code[1] == 'E' || event.code[1] == 'O'
                || event.loss == 0 || !hasWindows) {
                continue;
            }
            const double index = indexOf(axis, event.position);
            const double loss_dB = lineAt(file.data.samples, at[2], at[3], index)
                - lineAt(file.data.samples, at[0], at[1], index);
            deviations_dB.push_back(std::abs(loss_dB - sor::loss_dB(event)));
        }
    }
    ASSERT_GE(deviations_dB.size(), 100U);
    std::sort(deviations_dB.begin(), deviations_dB.end());
    // 0.001 dB is one raw count and the unit of the stored value. What deviates by more are traces
    // stitched from several pulses and windows of few samples in the noise.
    EXPECT_LE(deviations_dB[deviations_dB.size() / 2], 0.0005);
    EXPECT_LE(deviations_dB[deviations_dB.size() * 3 / 4], 0.001);
}

} // namespace
