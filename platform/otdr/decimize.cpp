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
    return points(state().get(), clip, peaksOnly);
}

QPolygonF Decimize::points(const TraceState* state, wf_clip_t clip, bool peaksOnly)
{
    QPolygonF polygon;
    if (state == nullptr || !state->trace || clip.points <= 0 || !(clip.end > clip.start)) {
        return polygon;
    }
    const otdr::Trace& samples = *state->trace;
    const double metresPerNs = state->metresPerNs();
    const double first = samples.sampleAt(clip.start, metresPerNs);
    const double last = samples.sampleAt(clip.end, metresPerNs);
    const auto most = static_cast<std::size_t>(clip.points);
    const std::vector<otdr::Sample> kept = peaksOnly
        ? otdr::decimatePeaks(samples, first, last, most)
        : otdr::decimateEnvelope(samples, first, last, most);
    polygon.reserve(static_cast<int>(kept.size()));
    for (const otdr::Sample& sample : kept) {
        polygon << QPointF(samples.distanceAt(static_cast<double>(sample.index), metresPerNs),
                           samples.toLevel_dB(sample.raw));
    }
    return polygon;
}
