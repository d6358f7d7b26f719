#pragma once

#include "platform/otdr/core/result.h"
#include "platform/otdr/tracestate.h"
#include "platform/otdr/wfmeasparams.h"

/// Loads a trace file or a snapshot, told apart by their first bytes.
///
/// params say what a snapshot cannot: group index, helix factor, backscatter coefficient, range,
/// duration. Without them the usual values of the wavelength are taken, and the notes say so. A
/// trace file needs none.
[[nodiscard]] otdr::Result<TraceState> loadTrace(const QString& fileName,
                                                 const WfMeasParams* params);
