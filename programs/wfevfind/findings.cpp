#include "programs/wfevfind/findings.h"

#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/detectedevents.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/tracefigures.h"
#include "platform/otdr/traceloader.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace evfind {

namespace {

/// Why a trace cannot be searched, if so. A snapshot always tells its spacing.
const char* obstacleOf(const TraceState& trace)
{
    if (trace.file && !(otdr::sor::sampleInterval_ns(*trace.file) > 0.0)) {
        return "the spacing of the samples is not told";
    }
    return trace.pulse_ns > 0.0 ? nullptr : "the width of the pulse is not told";
}

} // namespace

otdr::Result<Findings> findEvents(const std::string& path)
{
    auto loaded = loadTrace(QFile::decodeName(path.c_str()), nullptr);
    if (!loaded) {
        return loaded.error();
    }
    if (const char* obstacle = obstacleOf(*loaded)) {
        return otdr::Error {otdr::ErrorCode::Damaged,
                            path + ": events cannot be found: " + obstacle, 0};
    }
    Findings found {path, std::move(*loaded), {}, {}, {}, {}};
    found.detection = detectionOf(found.trace);
    found.trace.events = eventListOf(found.detection, found.trace);
    found.trace.processing = Reflectogram::FromAcquisition;
    if (!found.trace.events.isEmpty()) {
        found.figures = keyFigures(found.trace);
    }
    std::copy_if(found.trace.events.begin(), found.trace.events.end(),
                 std::back_inserter(found.events),
                 [](const Event& event) { return event.type != Event::Fiber; });
    for (const otdr::DetectedEvent& event : found.detection.events) {
        if (isListed(event)) {
            found.samples.push_back(std::lround(event.index));
        }
    }
    return found;
}

} // namespace evfind
