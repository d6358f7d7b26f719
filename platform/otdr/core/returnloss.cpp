#include "platform/otdr/core/returnloss.h"

#include "platform/otdr/core/decibels.h"
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
    const double start = powerRatio(line.at(from) - reference_dB);
    const double slope = line.slope_dB * kNepersPerDb;
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

/// Light that comes back from some samples: what the fibre scatters, as a sum of powers over that
/// of a level, and what saturated peaks reflect, as a part of what goes in.
struct Light
{
    double scattered = 0.0;
    double reflected = 0.0;
};

Light lightFrom(const Trace& trace, SampleRange range, double reference_dB,
                gsl::span<const SaturatedPeak> peaks)
{
    std::vector<SaturatedPeak> ordered(peaks.begin(), peaks.end());
    std::sort(ordered.begin(), ordered.end(),
              [](const SaturatedPeak& a, const SaturatedPeak& b) { return a.from < b.from; });
    Light light;
    std::size_t done = range.first;
    for (const SaturatedPeak& peak : ordered) {
        SampleRange gap = samplesBetween(peak.from, peak.to, trace.size());
        gap.last = std::min(gap.last, range.last);
        if (gap.first < done || gap.first >= gap.last) {
            continue;
        }
        const double start = peak.fibre.at(static_cast<double>(gap.first));
        light.scattered += samplePower(trace, reference_dB, {done, gap.first})
            + linePower(peak.fibre, reference_dB, edgeBefore(gap.first), edgeBefore(gap.last));
        const double pathLoss = reference_dB - start;
        light.reflected += std::pow(10.0, (peak.reflectance_dB - 2.0 * pathLoss) / 10.0);
        done = gap.last;
    }
    light.scattered += samplePower(trace, reference_dB, {done, range.last});
    return light;
}

/// NaN where nothing comes back.
double returnLossOf(const Trace& trace, double backscatter_dB, const Light& light)
{
    const double perSample = std::pow(10.0, backscatter_dB / 10.0) * trace.axis().sampleInterval_ns;
    const double total = perSample * light.scattered + light.reflected;
    const bool possible = std::isfinite(total) && total > 0.0;
    return possible ? -10.0 * std::log10(total) : std::numeric_limits<double>::quiet_NaN();
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
    Light light = lightFrom(trace, range, section.reference_dB, peaks);
    light.scattered -= section.launch;
    return returnLossOf(trace, section.backscatter_dB, light);
}

double fibreReturnLoss_dB(const Trace& trace, const FibreBetween& fibre)
{
    return fibreReturnLoss_dB(trace, fibre, {});
}

double fibreReturnLoss_dB(const Trace& trace, const FibreBetween& fibre,
                          gsl::span<const SaturatedPeak> peaks)
{
    const double reference_dB = fibre.behind.at(fibre.from);
    const SampleRange shown = samplesWithin(std::max(fibre.from, fibre.behind.first()),
                                            std::min(fibre.to, fibre.before.last()), trace.size());
    const double middle = 0.5 * (fibre.from + fibre.to);
    const double first = shown.empty() ? middle : edgeBefore(shown.first);
    const double last = shown.empty() ? middle : edgeBefore(shown.last);
    Light light = lightFrom(trace, shown, reference_dB, peaks);
    light.scattered += linePower(fibre.behind, reference_dB, fibre.from, first)
        + linePower(fibre.before, reference_dB, last, fibre.to);
    return returnLossOf(trace, fibre.backscatter_dB, light);
}

} // namespace otdr
