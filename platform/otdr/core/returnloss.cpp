#include "platform/otdr/core/returnloss.h"

#include "platform/otdr/core/samplerange.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace otdr {

namespace {

/// Sum of 10^((line - reference) / 5) over n samples from an index on: a geometric series.
double linePower(const Line& line, double reference_dB, SampleRange range)
{
    const double perDecibel = std::log(10.0) / 5.0;
    const double start = line.at(static_cast<double>(range.first)) - reference_dB;
    const double step = line.slope_dB * perDecibel;
    const auto n = static_cast<double>(range.count());
    const double terms = step == 0.0 ? n : std::expm1(n * step) / std::expm1(step);
    return std::exp(start * perDecibel) * terms;
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
        power += trace.powerSums().sum(done, gap.first, section.reference_dB);
        power += linePower(peak.fibre, section.reference_dB, gap);
        const double pathLoss = section.reference_dB - start;
        reflected += std::pow(10.0, (peak.reflectance_dB - 2.0 * pathLoss) / 10.0);
        done = gap.last;
    }
    power += trace.powerSums().sum(done, range.last, section.reference_dB);
    const double interval_ns = trace.axis().sampleInterval_ns;
    const double total =
        std::pow(10.0, section.backscatter_dB / 10.0) * interval_ns * power + reflected;
    const bool possible = !range.empty() && std::isfinite(total) && total > 0.0;
    return possible ? -10.0 * std::log10(total) : std::numeric_limits<double>::quiet_NaN();
}

} // namespace otdr
