#pragma once

#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/trace.h"

/// What the search for events is told of a trace file.
namespace measuredfile {

/// Decibels of one raw count.
[[nodiscard]] inline double dbPerCount(const otdr::sor::File& file)
{
    return file.data.scaleFactor * otdr::kUsualDbPerCount / 1000.0;
}

/// One nanosecond between samples where the file tells no interval.
[[nodiscard]] inline otdr::TraceAxis axis(const otdr::sor::File& file)
{
    const otdr::sor::Axis told = otdr::sor::axisOf(file);
    return {told.sampleInterval_ns > 0.0 ? told.sampleInterval_ns : 1.0, told.firstSample_ns};
}

[[nodiscard]] inline otdr::Measurement measurement(const otdr::sor::File& file)
{
    return {otdr::sor::pulse_ns(file), otdr::metresPerNs(otdr::sor::groupIndex(file)),
            otdr::sor::backscatter_dB(file), otdr::sor::nominalWavelength_nm(file)};
}

} // namespace measuredfile
