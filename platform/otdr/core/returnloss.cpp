#include "platform/otdr/core/returnloss.h"

#include "platform/otdr/core/samplerange.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace otdr {

namespace {

/// Integral of 10^((line - reference) / 5) over sample indices: sample i stands for i - 0.5 to
/// i + 0.5.
double linePower(const Line& line, double reference_dB, double from, double to)
{
    const double perDecibel = std::log(10.0) / 5.0;
    const double start = std::exp((line.at(from) - reference_dB) * perDecibel);
    const double slope = line.slope_dB * perDecibel;
    return start * (slope == 0.0 ? to - from : std::expm1((to - from) * slope) / slope);
}

double samplePower(const Trace& trace, double reference_dB, SampleRange range)
{
    return trace.powerSums().sum(range.first, range.last, reference_dB);
}

double edgeBefore(std::size_t sample)
{
    return static_cast<double>(sample) - 0.5;
}

/// Of light that comes back, as a part of what goes in.
double returnLossOf(double light)
{
    const bool possible = std::isfinite(light) && light > 0.0;
    return possible ? -10.0 * std::log10(light) : std::numeric_limits<double>::quiet_NaN();
}

/// What the fibre of one sample sends back of the light that goes in.
double backscatterPerSample(const Trace& trace, double backscatter_dB)
{
    return std::pow(10.0, backscatter_dB / 10.0) * trace.axis().sampleInterval_ns;
}

} // namespace

double returnLoss_dB(const Trace& trace, const ReturnLossSection& section)
{
    return returnLoss_dB(trace, section, {});
}

double returnLoss_dB(const Trace& trace, const ReturnLossSection& section,
                     gsl::span<const SaturatedPeak> peaks)
{
    const SampleRange range = samplesBetween(section.from, section.to, trace.size());
    std::vector<SaturatedPeak> ordered(peaks.begin(), peaks.end());
    std::sort(ordered.begin(), ordered.end(),
              [](const SaturatedPeak& a, const SaturatedPeak& b) { return a.from < b.from; });
    double power = 0.0;
    double reflected = 0.0;
    std::size_t done = range.first;
    for (const SaturatedPeak& peak : ordered) {
        SampleRange gap = samplesBetween(peak.from, peak.to, trace.size());
        gap.last = std::min(gap.last, range.last);
        if (gap.first < done || gap.first >= gap.last) {
            continue;
        }
        const double start = peak.fibre.at(static_cast<double>(gap.first));
        power += samplePower(trace, section.reference_dB, {done, gap.first});
        power += linePower(peak.fibre, section.reference_dB, edgeBefore(gap.first),
                           edgeBefore(gap.last));
        const double pathLoss = section.reference_dB - start;
        reflected += std::pow(10.0, (peak.reflectance_dB - 2.0 * pathLoss) / 10.0);
        done = gap.last;
    }
    power += samplePower(trace, section.reference_dB, {done, range.last});
    return range.empty()
        ? std::numeric_limits<double>::quiet_NaN()
        : returnLossOf(backscatterPerSample(trace, section.backscatter_dB) * power + reflected);
}

double fibreReturnLoss_dB(const Trace& trace, const FibreBetween& fibre)
{
    const double reference_dB = fibre.behind.at(fibre.from);
    const SampleRange shown = samplesWithin(std::max(fibre.from, fibre.behind.first()),
                                            std::min(fibre.to, fibre.before.last()), trace.size());
    const double middle = 0.5 * (fibre.from + fibre.to);
    const double light = linePower(fibre.behind, reference_dB, fibre.from,
                                   shown.empty() ? middle : edgeBefore(shown.first))
        + samplePower(trace, reference_dB, shown)
        + linePower(fibre.before, reference_dB, shown.empty() ? middle : edgeBefore(shown.last),
                    fibre.to);
    return returnLossOf(backscatterPerSample(trace, fibre.backscatter_dB) * light);
}

} // namespace otdr
