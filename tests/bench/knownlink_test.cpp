#include "bench/accuracylinks.h"
#include "bench/knownlink.h"
#include "platform/otdr/core/constants.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using accuracy::kBackscatter_dB;
using accuracy::KnownLink;
using accuracy::Sight;
using gather::Spectrum;

constexpr int kLinkWavelength_nm = 1550;

/// Ten kilometres of 0.2 dB/km with a loss of 0.5 dB in their middle.
gather::Fibre fibreWithLoss()
{
    gather::Fibre fibre;
    fibre.ior = Spectrum(accuracy::kIor);
    fibre.sections = {{10000.0, Spectrum(0.2), Spectrum(kBackscatter_dB)}};
    fibre.events = {{5000.0, Spectrum(0.5), {}, "splice"}};
    return fibre;
}

/// A metre a sample.
Sight sight()
{
    Sight seen;
    seen.interval_ns = 1.0 / otdr::metresPerNs(accuracy::kIor);
    seen.pulse = 50.0;
    seen.gap = 100.0;
    seen.launch_dB = 30.0;
    seen.noise_dB = 6.0;
    return seen;
}

TEST(KnownLink, TellsTheLevelOfTheFibre)
{
    const KnownLink link(fibreWithLoss(), kLinkWavelength_nm, sight());
    EXPECT_NEAR(link.endOf(), 10000.0, 1e-6);
    EXPECT_NEAR(link.levelBefore(link.indexOf(link.truth().front())), 29.0, 1e-6);
    EXPECT_NEAR(link.levelBefore(10000.0), 27.5, 1e-6);
}

TEST(KnownLink, CountsPlacesFromTheFirstSample)
{
    Sight early = sight();
    early.firstSample_ns = -300.0 * early.interval_ns;
    const KnownLink link(fibreWithLoss(), kLinkWavelength_nm, early);
    EXPECT_NEAR(link.endOf(), 10300.0, 1e-6);
    EXPECT_NEAR(link.levelBefore(link.indexOf(link.truth().front())), 29.0, 1e-6);
}

TEST(KnownLink, DividesTheLinesWhereFibresOfOtherSlopesMeet)
{
    gather::Fibre fibre = fibreWithLoss();
    const KnownLink whole(fibre, kLinkWavelength_nm, sight());
    EXPECT_NEAR(whole.sidesOf(0).left, 4900.0, 1e-6);
    EXPECT_NEAR(whole.sidesOf(0).right, 4900.0, 1e-6);
    fibre.sections = {{8000.0, Spectrum(0.2), Spectrum(kBackscatter_dB)},
                      {2000.0, Spectrum(0.4), Spectrum(kBackscatter_dB)}};
    const KnownLink joined(fibre, kLinkWavelength_nm, sight());
    EXPECT_NEAR(joined.sidesOf(0).right, 2900.0, 1e-6);
}

TEST(KnownLink, BoundsALossByTheErrorOfTwoLines)
{
    Sight seen = sight();
    seen.gap = 0.0;
    seen.rounding_dB = 0.0;
    const KnownLink link(fibreWithLoss(), kLinkWavelength_nm, seen);
    // At its end a line through n samples is known to 2 s / sqrt(n).
    const auto error = [&](double level_dB) {
        return 2.0 * link.sigmaAt(level_dB) / std::sqrt(900.0);
    };
    EXPECT_NEAR(link.boundOf(0, {900.0, 900.0}), std::hypot(error(29.0), error(28.5)), 1e-6);
}

/// A reflection of 25 dB above the fibre is one of 20 dB to a receiver that shows no more.
TEST(KnownLink, FibreBehindABrightEventIsSeenWhenItsLateLightIsGone)
{
    gather::Fibre fibre = fibreWithLoss();
    const double pulse_dB = 10.0 * std::log10(sight().pulse * sight().interval_ns);
    const auto sidesWith = [&](double height_dB, const Sight& seen) {
        fibre.events.front().reflectance_dB =
            Spectrum(2.0 * height_dB + kBackscatter_dB + pulse_dB);
        return KnownLink(fibre, kLinkWavelength_nm, seen).sidesOf(0);
    };
    Sight seen = sight();
    EXPECT_EQ(sidesWith(15.0, seen).late, 0.0);
    seen.tailPart = 0.001; // of 1000 times the light of the fibre: 2.2 dB
    seen.tailSamples = 100.0;
    const double late = 100.0 * std::log(2.1715 / 0.001);
    EXPECT_NEAR(sidesWith(15.0, seen).late, late, 0.1);
    EXPECT_NEAR(sidesWith(15.0, seen).right, 4900.0 - late, 0.1);
    seen.overload_dB = 19.0; // at the port, which is a decibel brighter
    EXPECT_NEAR(sidesWith(25.0, seen).late, sidesWith(20.0, seen).late, 1e-6);
    seen.recovery = 2000.0;
    EXPECT_EQ(sidesWith(25.0, seen).late, 2000.0);
    EXPECT_NEAR(sidesWith(15.0, seen).late, late, 0.1);
}

/// Its line is told that far beyond itself.
TEST(KnownLink, LateLightMakesALossLessCertain)
{
    Sight seen = sight();
    seen.rounding_dB = 0.0;
    const KnownLink link(fibreWithLoss(), kLinkWavelength_nm, seen);
    const double near = link.boundOf(0, {900.0, 900.0});
    const double far = link.boundOf(0, {900.0, 900.0, 900.0});
    // The error of a line of n samples, d beside its middle: s sqrt(1 / n + 12 d^2 / n^3).
    const auto error = [&](double level_dB, double away) {
        const double d = 450.0 + away;
        return link.sigmaAt(level_dB) * std::sqrt(1.0 / 900.0 + 12.0 * d * d / std::pow(900.0, 3));
    };
    EXPECT_NEAR(near, std::hypot(error(29.0, 0.0), error(28.5, 100.0)), 1e-9);
    EXPECT_NEAR(far, std::hypot(error(29.0, 0.0), error(28.5, 1000.0)), 1e-9);
}

TEST(KnownLink, BoundsALossByCoherentNoiseToo)
{
    Sight seen = sight();
    const double without =
        KnownLink(fibreWithLoss(), kLinkWavelength_nm, seen).boundOf(0, {900.0, 900.0});
    seen.fading_dB = 0.01;
    const double with =
        KnownLink(fibreWithLoss(), kLinkWavelength_nm, seen).boundOf(0, {900.0, 900.0});
    EXPECT_GT(with, 10.0 * without);
}

TEST(KnownLink, ShowsWeakLossesLargerWhereLightIsTakenAway)
{
    Sight seen = sight();
    seen.launch_dB = 13.0; // at the loss 6 dB above the noise
    seen.offset = -3.0;
    const KnownLink link(fibreWithLoss(), kLinkWavelength_nm, seen);
    // Light of 15.8 times the noise becomes one of 12.6 times, each less by 3.
    EXPECT_NEAR(link.shownLoss_dB(0), 5.0 * std::log10((15.849 - 3.0) / (12.589 - 3.0)), 1e-3);
}

TEST(KnownLink, ForgetsWhatCannotBeSeen)
{
    gather::Fibre fibre = fibreWithLoss();
    fibre.events.push_back({7000.0, Spectrum({{1310, 0.0}, {1625, 1.0}}), {}, "bend"});
    fibre.events.front().reflectance_dB = Spectrum(-50.0);
    fibre.endReflectance_dB = Spectrum(-50.0);
    EXPECT_EQ(KnownLink(fibre, 1625, sight()).truth().size(), 4U); // with an echo
    Sight hidden = sight();
    hidden.leastEcho_dB = 3.0;
    EXPECT_EQ(KnownLink(fibre, 1625, hidden).truth().size(), 3U);
    EXPECT_EQ(KnownLink(fibre, 1310, hidden).truth().size(), 2U);
}

} // namespace
