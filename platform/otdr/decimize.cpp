#include "platform/otdr/decimize.h"

#include "platform/otdr/core/decimation.h"
#include "platform/otdr/tracestate.h"

#include <vector>

Decimize::Decimize(const Reflectogram& refl, bool peaksOnly)
    : Reflectogram(refl)
    , peaksOnly(peaksOnly)
{
}

QPolygonF Decimize::operator()(wf_clip_t clip) const
{
    QPolygonF polygon;
    const auto now = state();
    if (!now || !now->trace || clip.points <= 0 || !(clip.end > clip.start)) {
        return polygon;
    }
    const otdr::Trace& samples = *now->trace;
    const double metresPerNs = now->metresPerNs();
    const double first = samples.sampleAt(clip.start, metresPerNs);
    const double last = samples.sampleAt(clip.end, metresPerNs);
    const auto points = static_cast<std::size_t>(clip.points);
    const std::vector<otdr::Sample> kept = peaksOnly
        ? otdr::decimatePeaks(samples, first, last, points)
        : otdr::decimateEnvelope(samples, first, last, points);
    polygon.reserve(static_cast<int>(kept.size()));
    for (const otdr::Sample& sample : kept) {
        polygon << QPointF(samples.distanceAt(static_cast<double>(sample.index), metresPerNs),
                           samples.toLevel_dB(sample.raw));
    }
    return polygon;
}
