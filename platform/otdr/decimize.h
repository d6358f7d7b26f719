#pragma once

#include "platform/otdr/reflectogram.h"
#include "platform/otdr/wf_clip_t.h"

#include <QPolygonF>

/// A trace that answers with about as many points as a window on the screen has pixels.
class Decimize : public Reflectogram
{
public:
    /// peaksOnly: each point is the highest sample of its column, at its true distance, for a
    /// picture filled from 0 up. Otherwise the lowest and the highest of each column, in order of
    /// distance, for a line.
    Decimize(const Reflectogram& refl, bool peaksOnly);

    /// Points of the window in order of distance, x in m, y in dB; at most clip.points of them, or
    /// all samples of the window where they are no more than that. Empty without a trace or for a
    /// window of no width.
    [[nodiscard]] QPolygonF operator()(wf_clip_t clip) const;

    /// The same of one state of a trace, which may be null.
    [[nodiscard]] static QPolygonF points(const TraceState* state, wf_clip_t clip, bool peaksOnly);

private:
    bool peaksOnly;
};
