#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/sorvalues.h"
#include "tests/support/sorsketch.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

namespace sor = otdr::sor;
using testing_support::keyEvent;

sor::File withFxd()
{
    sor::File file;
    file.hasFxd = true;
    file.fxd.pulses = {{100, 500'000, 4000}};
    file.fxd.groupIndex = 147'000;
    return file;
}

sor::File withEvents(std::vector<sor::KeyEvent> events)
{
    sor::File file = withFxd();
    file.keyEvents = sor::KeyEvents {std::move(events), {}};
    return file;
}

double actual(int nominal_nm, int stored)
{
    sor::File file;
    file.gen.wavelength_nm = static_cast<std::uint16_t>(nominal_nm);
    file.fxd.actualWavelength = static_cast<std::uint16_t>(stored);
    return sor::actualWavelength_nm(file);
}

TEST(SorWavelength, IsStoredInTenthsOrWhole)
{
    EXPECT_DOUBLE_EQ(actual(1550, 15'532), 1553.2);
    EXPECT_DOUBLE_EQ(actual(1550, 1550), 1550.0);
    EXPECT_DOUBLE_EQ(actual(1310, 1310), 1310.0);
    EXPECT_DOUBLE_EQ(actual(0, 16'250), 1625.0);
    EXPECT_DOUBLE_EQ(actual(0, 1625), 1625.0);
    EXPECT_DOUBLE_EQ(actual(850, 8500), 850.0);
    EXPECT_DOUBLE_EQ(actual(0, 5000), 5000.0);
    EXPECT_DOUBLE_EQ(actual(0, 5001), 500.1);
    EXPECT_DOUBLE_EQ(actual(500, 5000), 500.0); // the nominal one overrules the limit
}

TEST(SorWavelength, ComesFromTheOtherBlockWhereOneNamesNone)
{
    EXPECT_DOUBLE_EQ(actual(1310, 0), 1310.0);
    EXPECT_TRUE(std::isnan(actual(0, 0)));
    sor::File file;
    EXPECT_EQ(sor::nominalWavelength_nm(file), 0);
    file.fxd.actualWavelength = 15'536;
    EXPECT_EQ(sor::nominalWavelength_nm(file), 1554);
    file.gen.wavelength_nm = 1550;
    EXPECT_EQ(sor::nominalWavelength_nm(file), 1550);
}

TEST(SorWavelength, MayBeInTenthsInBothBlocks)
{
    EXPECT_DOUBLE_EQ(actual(15'500, 15'532), 1553.2);
    EXPECT_DOUBLE_EQ(actual(15'500, 0), 1550.0);
    EXPECT_DOUBLE_EQ(actual(8500, 850), 850.0);
    sor::File file;
    file.gen.wavelength_nm = 16'250;
    EXPECT_EQ(sor::nominalWavelength_nm(file), 1625);
}

TEST(SorBackscatter, IsReadInWhicheverWayAFibreCanHaveIt)
{
    sor::File file;
    const auto coefficient = [&file](int stored) {
        file.fxd.backscatter = static_cast<std::uint16_t>(stored);
        return sor::backscatter_dB(file);
    };
    EXPECT_DOUBLE_EQ(coefficient(795), -79.5);
    EXPECT_DOUBLE_EQ(coefficient(600), -60.0);
    EXPECT_DOUBLE_EQ(coefficient(900), -90.0);
    EXPECT_DOUBLE_EQ(coefficient(65536 - 795), -79.5); // with its sign
    EXPECT_DOUBLE_EQ(coefficient(7950), -79.5); // hundredths
    EXPECT_DOUBLE_EQ(coefficient(80), -80.0); // whole
    EXPECT_DOUBLE_EQ(coefficient(495), -79.5); // at 1 us
    for (const int none : {0, 10, 65, 599 + 302, 2000, 30'000, 65'535}) {
        EXPECT_EQ(std::isnan(coefficient(none)), none != 65) << none;
    }
}

TEST(SorGroupIndex, IsReplacedOutsideWhatGlassCanHave)
{
    sor::File file;
    const auto index = [&file](std::uint32_t stored) {
        file.fxd.groupIndex = stored;
        return sor::groupIndex(file);
    };
    EXPECT_DOUBLE_EQ(index(146'770), 1.4677);
    EXPECT_DOUBLE_EQ(index(130'000), 1.30);
    EXPECT_DOUBLE_EQ(index(170'000), 1.70);
    EXPECT_DOUBLE_EQ(index(0), otdr::kDefaultGroupIndex);
    EXPECT_DOUBLE_EQ(index(129'999), otdr::kDefaultGroupIndex);
    EXPECT_DOUBLE_EQ(index(170'001), otdr::kDefaultGroupIndex);
    // In other units.
    EXPECT_DOUBLE_EQ(index(14'682), 1.4682);
    EXPECT_DOUBLE_EQ(index(1'468'200), 1.4682);
    EXPECT_DOUBLE_EQ(index(1'470), 1.47);
    EXPECT_DOUBLE_EQ(index(100'000), otdr::kDefaultGroupIndex);
    EXPECT_DOUBLE_EQ(index(4'000'000'000U), otdr::kDefaultGroupIndex);
}

TEST(SorDistance, IsOneWayTimeIn100Picoseconds)
{
    sor::File file = withFxd();
    EXPECT_NEAR(sor::metresPerCount(file), 0.020394, 5e-7);
    // 10 us one way at n = 1.47: c * 1e-5 / 1.47.
    EXPECT_NEAR(sor::position_m(file, keyEvent(1, 100'000, "0F9999")), 2039.404, 1e-3);
    EXPECT_NEAR(sor::position_m(file, keyEvent(1, -750, "0F9999")), -15.2955, 1e-3);
}

TEST(SorSpacing, IsCountsForTenThousandSamples)
{
    sor::File file = withFxd();
    EXPECT_DOUBLE_EQ(sor::sampleInterval_ns(file), 10.0);
    EXPECT_NEAR(sor::spacing_m(file), 50 * 0.02039404, 1e-6);
}

TEST(SorSpacing, IsThatOfTheFirstPulseThatTellsWidthAndSpacing)
{
    sor::File file = withFxd();
    file.fxd.pulses = {{0, 0, 0}, {100, 500'000, 4000}, {300, 900'000, 10}};
    EXPECT_DOUBLE_EQ(sor::sampleInterval_ns(file), 10.0);
    EXPECT_DOUBLE_EQ(sor::pulse_ns(file), 100.0);
    file.fxd.pulses = {{0, 700'000, 0}, {100, 0, 0}};
    EXPECT_DOUBLE_EQ(sor::sampleInterval_ns(file), 14.0);
    EXPECT_TRUE(std::isnan(sor::pulse_ns(file)));
}

TEST(SorSpacing, ComesFromTheRangeWhereItIsMissing)
{
    sor::File file = withFxd();
    file.fxd.pulses[0].dataSpacing = 0;
    file.fxd.acquisitionRange = 200'000;
    file.data.samples = otdr::RawSamples(std::vector<std::uint16_t>(4000));
    EXPECT_DOUBLE_EQ(sor::sampleInterval_ns(file), 10.0);
    file.fxd.acquisitionRange = 0;
    EXPECT_TRUE(std::isnan(sor::sampleInterval_ns(file)));
    EXPECT_TRUE(std::isnan(sor::spacing_m(file)));
    EXPECT_TRUE(std::isnan(sor::sampleInterval_ns(sor::File {})));
}

TEST(SorValues, AreNotANumberWhereTheFileGivesNone)
{
    const sor::File file;
    EXPECT_TRUE(std::isnan(sor::pulse_ns(file)));
    EXPECT_TRUE(std::isnan(sor::range_m(file)));
    EXPECT_TRUE(std::isnan(sor::averagingTime_s(file)));
    EXPECT_TRUE(std::isnan(sor::backscatter_dB(file)));
    EXPECT_TRUE(std::isnan(sor::totalLoss_dB(file)));
    EXPECT_TRUE(std::isnan(sor::returnLoss_dB(file)));
    EXPECT_TRUE(std::isnan(sor::fibreEnd_m(file)));
    EXPECT_EQ(sor::eventKinds(file), "");
}

TEST(SorValues, TakeAnUnmeasuredFigureAsUnknownNotAsZero)
{
    sor::File file = withEvents({});
    EXPECT_TRUE(std::isnan(sor::totalLoss_dB(file)));
    EXPECT_TRUE(std::isnan(sor::returnLoss_dB(file)));
    EXPECT_TRUE(std::isnan(sor::attenuation_dBPerKm(keyEvent(1, 0, "0F9999"))));
    EXPECT_TRUE(std::isnan(sor::reflectance_dB(keyEvent(1, 0, "0F9999"))));
    EXPECT_DOUBLE_EQ(sor::loss_dB(keyEvent(1, 0, "0F9999")), 0.0);
    file.keyEvents->summary.totalLoss = -120;
    file.keyEvents->summary.returnLoss = 65'535;
    EXPECT_DOUBLE_EQ(sor::totalLoss_dB(file), -0.12);
    EXPECT_DOUBLE_EQ(sor::returnLoss_dB(file), 65.535);
    sor::KeyEvent event;
    event.attenuation = -1500;
    EXPECT_DOUBLE_EQ(sor::attenuation_dBPerKm(event), -1.5);
}

/// One maker stores no reflectance as the lowest integer but one; no fibre has such figures.
TEST(SorValues, TakeTheLowestIntegersAsUnknown)
{
    sor::File file = withEvents({});
    for (const int above : {0, 1, 2}) {
        file.keyEvents->summary.totalLoss = std::numeric_limits<std::int32_t>::min() + above;
        sor::KeyEvent event = keyEvent(1, 90'000, "0F9999");
        event.loss = static_cast<std::int16_t>(std::numeric_limits<std::int16_t>::min() + above);
        event.attenuation = event.loss;
        EXPECT_EQ(std::isnan(sor::totalLoss_dB(file)), above < 2) << above;
        EXPECT_EQ(std::isnan(sor::loss_dB(event)), above < 2) << above;
        EXPECT_EQ(std::isnan(sor::attenuation_dBPerKm(event)), above < 2) << above;
        EXPECT_EQ(sor::eventKinds(withEvents({event})), above < 2 ? "n" : "p") << above;
    }
}

TEST(SorReflectance, IsNormalisedToNegative)
{
    const auto reflectance = [](std::int32_t stored) {
        return sor::reflectance_dB(keyEvent(1, 0, "1F9999", 0, stored));
    };
    EXPECT_DOUBLE_EQ(reflectance(-45'678), -45.678);
    EXPECT_DOUBLE_EQ(reflectance(47'285), -47.285);
    EXPECT_DOUBLE_EQ(reflectance(5001), -5.001);
    EXPECT_TRUE(std::isnan(reflectance(5000)));
    EXPECT_TRUE(std::isnan(reflectance(4014)));
    EXPECT_TRUE(std::isnan(reflectance(0)));
    EXPECT_TRUE(std::isnan(reflectance(-2'147'483'647)));
    EXPECT_TRUE(std::isnan(reflectance(std::numeric_limits<std::int32_t>::min())));
}

TEST(SorAveragingTime, IsWholeSecondsWithSomeMakers)
{
    sor::File file;
    file.fxd.averagingTime = 150;
    EXPECT_DOUBLE_EQ(sor::averagingTime_s(file), 15.0);
    file.sup.supplier = "ANRITSU ";
    EXPECT_DOUBLE_EQ(sor::averagingTime_s(file), 150.0);
    file.sup.supplier = "Customer Ltd";
    file.blocks = {{"ExfoNewProprietaryBlock 01"}};
    EXPECT_DOUBLE_EQ(sor::averagingTime_s(file), 150.0);
    file.sup.supplier = "Noyes"; // saved again by the software of another maker
    EXPECT_DOUBLE_EQ(sor::averagingTime_s(file), 15.0);
}

TEST(SorLevel, RisesWithTheLight)
{
    sor::File file;
    EXPECT_DOUBLE_EQ(sor::level_dB(file, 65'535), 0.0);
    EXPECT_DOUBLE_EQ(sor::level_dB(file, 20'000), 45.535);
    file.data.scaleFactor = 500;
    EXPECT_DOUBLE_EQ(sor::level_dB(file, 20'000), 22.7675);
}

TEST(SorEventKind, FollowsTheCode)
{
    const auto kinds = [](const char* code, std::int16_t loss) {
        return sor::eventKinds(
                   withEvents({keyEvent(1, 90'000, code, loss), keyEvent(2, 99'000, "1F9999")}))
            .substr(0, 1);
    };
    EXPECT_EQ(kinds("0F9999", 100), "n");
    EXPECT_EQ(kinds("0F9999", 0), "n");
    EXPECT_EQ(kinds("0F9999", -1), "p");
    EXPECT_EQ(kinds("1F9999", -1), "r");
    EXPECT_EQ(kinds("2F9999", 100), "r");
    EXPECT_EQ(kinds("1A9999", 100), "r");
    EXPECT_EQ(kinds("0M9999", 100), "n");
    EXPECT_EQ(kinds("0E9999", 100), "e");
    EXPECT_EQ(kinds("1E9999", 100), "e");
    EXPECT_EQ(kinds("2D9999", 100), "e");
    EXPECT_EQ(kinds("1O9999", 100), "e");
    EXPECT_EQ(kinds("?Z9999", 100), "n");
    EXPECT_EQ(kinds("?Z9999", -100), "p");
}

TEST(SorEventKind, IsStartForTheFirstEventWithinAPulseWidthOfZero)
{
    const auto event = [](std::int32_t position) { return keyEvent(1, position, "1F9999"); };
    EXPECT_EQ(sor::eventKinds(withEvents({event(0), event(400), event(9000)})), "srr");
    EXPECT_EQ(sor::eventKinds(withEvents({event(-750), event(0), event(9000)})), "rsr");
    EXPECT_EQ(sor::eventKinds(withEvents({event(500)})), "s");
    EXPECT_EQ(sor::eventKinds(withEvents({event(501)})), "r");
    EXPECT_EQ(sor::eventKinds(withEvents({event(-500)})), "s");
    EXPECT_EQ(sor::eventKinds(withEvents({keyEvent(1, 0, "1E9999")})), "e");
}

TEST(SorEventKind, IgnoresAReflectanceThatTheCodeDenies)
{
    const sor::File file = withEvents(
        {keyEvent(1, 9000, "0F9999", 10, -50'000), keyEvent(2, 99'000, "1F9999", 10, -50'000)});
    EXPECT_EQ(sor::eventKinds(file), "nr");
}

TEST(SorEventKind, FollowsTheReflectanceWhereAFileCodesNoEventReflective)
{
    const sor::File file = withEvents(
        {keyEvent(1, 0, "0F9999", 0, -40'000), keyEvent(2, 9000, "0F9999", 10, 0),
         keyEvent(3, 20'000, "0F9999", -10, -50'000), keyEvent(4, 99'000, "0E9999", 10, -14'000)});
    EXPECT_EQ(sor::eventKinds(file), "snre");
}

TEST(SorFibreEnd, IsTheNearestEventCodedAsEnd)
{
    const auto end_m = [](std::vector<sor::KeyEvent> events) {
        return sor::fibreEnd_m(withEvents(std::move(events)));
    };
    const double metre = 0.02039404;
    EXPECT_NEAR(end_m({keyEvent(1, 9000, "1E9999"), keyEvent(2, 20'000, "1F9999")}), 9000 * metre,
                1e-3);
    EXPECT_NEAR(end_m({keyEvent(1, 9000, "1D9999"), keyEvent(2, 8000, "0E9999")}), 8000 * metre,
                1e-3);
    EXPECT_TRUE(std::isnan(end_m({keyEvent(1, 9000, "1O9999")})));
    EXPECT_TRUE(std::isnan(end_m({})));
}

TEST(SorSaturation, IsTheClassOfTheCode)
{
    EXPECT_TRUE(sor::isSaturated(keyEvent(1, 0, "2E9999")));
    EXPECT_FALSE(sor::isSaturated(keyEvent(1, 0, "1E9999")));
    EXPECT_EQ(sor::codeText(keyEvent(1, 0, "2E9999")), "2E9999");
}

TEST(SorChecksumVerdict, IsOpenWhereNothingCanBeJudged)
{
    sor::File file;
    const auto verdict = [&file](sor::Checksum checksum) {
        file.checksum = checksum;
        return sor::checksumVerdict(file);
    };
    EXPECT_EQ(verdict(sor::Checksum::Matches), true);
    EXPECT_EQ(verdict(sor::Checksum::Unknown), false);
    EXPECT_EQ(verdict(sor::Checksum::NotComputed), std::nullopt);
    EXPECT_EQ(verdict(sor::Checksum::Missing), std::nullopt);
    EXPECT_EQ(verdict(sor::Checksum::NotChecked), std::nullopt);
    file.blocks = {{"ExfoNewProprietaryBlock 01"}};
    EXPECT_EQ(verdict(sor::Checksum::Unknown), std::nullopt);
    EXPECT_EQ(verdict(sor::Checksum::Matches), true);
}

} // namespace
