#pragma once

#include "platform/otdr/core/sor.h"
#include "platform/otdr/core/trace.h"
#include "platform/otdr/event.h"
#include "platform/otdr/sordata.h"

#include <QString>
#include <QStringList>

#include <memory>

/// Everything known about one trace. Never changed in place: a change makes a new one.
struct TraceState
{
    QString fileName;
    QString error; ///< why the last load failed
    QStringList notes;
    bool measured = false;

    std::shared_ptr<const otdr::Trace> trace; ///< null where nothing was loaded
    std::shared_ptr<const otdr::sor::File>
        file; ///< the trace file it came from; null for a snapshot

    int wavelength_nm = 0; ///< nominal
    double pulse_ns = 0.0;
    double backscatter_dB = 0.0; ///< at 1 ns
    double ior = 1.5;
    double helix_percent = 0.0;
    double range_m = 0.0;
    int duration_s = 0;

    EventList events; ///< in order along the fibre
    int processing = 0; ///< who made the events, see Reflectogram::Processing
    bool supParamsChanged = false; ///< against those of the file
    std::shared_ptr<const SorData> sor;

    /// Metres of cable for a nanosecond of round-trip time.
    [[nodiscard]] double metresPerNs() const;

    /// Width of the pulse in samples.
    [[nodiscard]] double pulseSamples() const;

    /// Fractional index in the record of a distance in metres. Only with a trace.
    [[nodiscard]] double indexAt(double distance_m) const;

    /// Whether it is known how far the samples lie apart. Where it is not, one is taken for a
    /// metre.
    [[nodiscard]] bool hasDistances() const;

    /// Distance of the end of the fibre, m; negative where it is not known.
    [[nodiscard]] double endOfFibre_m() const;
};
