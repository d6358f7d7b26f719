#include "tests/support/tracebuilder.h"

#include "platform/otdr/core/constants.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace testing_support {

TraceBuilder& TraceBuilder::sampling(double interval)
{
    interval_ns = interval;
    return *this;
}

TraceBuilder& TraceBuilder::pulse(double width_ns)
{
    pulse_ns = width_ns;
    return *this;
}

TraceBuilder& TraceBuilder::launch(Decibels level)
{
    launchLevel = level;
    return *this;
}

TraceBuilder& TraceBuilder::attenuation(Decibels value)
{
    perKilometre = value;
    return *this;
}

TraceBuilder& TraceBuilder::fibre(Length value)
{
    length = value;
    return *this;
}

TraceBuilder& TraceBuilder::front(std::size_t samples)
{
    frontSamples = samples;
    return *this;
}

TraceBuilder& TraceBuilder::behind(std::size_t samples)
{
    behindSamples = samples;
    return *this;
}

TraceBuilder& TraceBuilder::noise(Decibels value, std::uint64_t start)
{
    sigma = value;
    seed = start;
    return *this;
}

TraceBuilder& TraceBuilder::noiseFloor(Decibels level)
{
    floorLevel = level;
    return *this;
}

TraceBuilder& TraceBuilder::splice(Length at, Decibels loss)
{
    return connector(at, loss, {});
}

TraceBuilder& TraceBuilder::reflection(Length at, Decibels height)
{
    return connector(at, {}, height);
}

TraceBuilder& TraceBuilder::connector(Length at, Decibels loss, Decibels height)
{
    happenings.push_back({at, loss, height});
    return *this;
}

double TraceBuilder::metresPerNs() const
{
    return otdr::metresPerNs(otdr::kDefaultGroupIndex);
}

double TraceBuilder::indexOf(Length at) const
{
    return at.m / metresPerNs() / interval_ns + static_cast<double>(frontSamples);
}

double TraceBuilder::pulseSamples() const
{
    return pulse_ns / interval_ns;
}

TraceBuilder& TraceBuilder::reflectingEnd(Decibels height)
{
    endHeight = height;
    return *this;
}

double TraceBuilder::trueLevel_dB(Length at) const
{
    const double pulse_m = pulse_ns * metresPerNs();
    double level = launchLevel.dB - perKilometre.dB * at.m / 1000.0;
    double peak = 0.0;
    for (const Happening& happening : happenings) {
        const double behind_m = at.m - happening.at.m;
        level -= happening.loss.dB * std::clamp(behind_m / pulse_m, 0.0, 1.0);
        if (behind_m >= 0.0 && behind_m < pulse_m) {
            peak = std::max(peak, happening.height.dB);
        }
    }
    return level + peak;
}

std::vector<std::uint16_t> TraceBuilder::counts() const
{
    std::mt19937_64 generator(seed);
    std::normal_distribution<double> gauss;
    const auto fibreSamples = static_cast<std::size_t>(std::ceil(indexOf(length)));
    std::vector<std::uint16_t> result(fibreSamples + behindSamples, otdr::kNoSignal);
    for (std::size_t i = frontSamples; i < result.size(); ++i) {
        const double scatter = sigma.dB > 0.0 ? gauss(generator) : 0.0;
        double level = 0.0;
        const bool isEnd =
            endHeight.dB > 0.0 && static_cast<double>(i) < indexOf(length) + pulseSamples();
        if (i >= fibreSamples && isEnd) {
            level = trueLevel_dB(length) + endHeight.dB + sigma.dB * scatter;
        } else if (i < fibreSamples) {
            const auto steps = static_cast<double>(i - frontSamples);
            level = trueLevel_dB({steps * interval_ns * metresPerNs()}) + sigma.dB * scatter;
        } else if (scatter > 0.0) {
            level = floorLevel.dB + 5.0 * std::log10(scatter);
        }
        const double raw = std::round(otdr::kNoSignal - level / otdr::kUsualDbPerCount);
        result[i] = static_cast<std::uint16_t>(std::clamp(raw, 0.0, 65535.0));
    }
    return result;
}

std::shared_ptr<const otdr::Trace> TraceBuilder::build() const
{
    const double first_ns = -static_cast<double>(frontSamples) * interval_ns;
    return std::make_shared<const otdr::Trace>(otdr::RawSamples(counts()), otdr::kUsualDbPerCount,
                                               otdr::TraceAxis {interval_ns, first_ns});
}

} // namespace testing_support
