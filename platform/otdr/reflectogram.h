#pragma once

#include "platform/otdr/event.h"
#include "platform/otdr/sordata.h"
#include "platform/otdr/wfmeasparams.h"

#include <QMetaType>
#include <QString>
#include <QStringList>

#include <memory>
#include <string>
#include <vector>

namespace otdr {
struct Detection;
class Trace;
} // namespace otdr
struct TraceState;

/// A handle of one trace: copies share it, and a change through one handle is seen by all holders.
///
/// Every operation may be called from any thread. Queries answer from one consistent state and
/// never wait for a computation. A default-made handle holds nothing until it is loaded; copies
/// made before do not follow.
class Reflectogram
{
public:
    /// Who put the event list on a trace.
    enum Processing
    {
        FromFile = 0,
        FromAcquisition = 3,
    };

    /// No snapshot of the acquisition program is larger.
    static qint64 largestSnapshot_bytes();

    Reflectogram();

    /// Opens a trace file (.sor, or a snapshot of the acquisition program). Invalid where that
    /// fails; see error().
    explicit Reflectogram(const QString& fileName);

    /// A trace just measured: opens the snapshot and marks the trace as measurement.
    Reflectogram(const QString& fileName, const WfMeasParams& params);

    /// Loads the file anew into this trace, for all holders. params say what a snapshot cannot; a
    /// .sor file's own parameters win. Where the file is unusable the trace stays as it was and
    /// false is returned.
    bool updateFromFile(const QString& fileName, const WfMeasParams& params);

    [[nodiscard]] bool isValid() const;
    [[nodiscard]] QString fileName() const; ///< as it was given
    [[nodiscard]] QString error() const; ///< why the last load failed; empty after a good one

    /// What was odd about the file, what was assumed, and what of the file a save left out.
    [[nodiscard]] QStringList notes() const;

    /// Whether this trace came from a measurement rather than from a file that the user opened.
    [[nodiscard]] bool isMeasured() const;

    [[nodiscard]] int wavelength() const; ///< nominal, nm
    [[nodiscard]] double pulseWidth() const; ///< ns
    [[nodiscard]] double endOfFiber() const; ///< m; negative where it is not known

    /// Whether it is known how far the samples lie apart; where not, one is taken for a metre.
    [[nodiscard]] bool hasDistances() const;

    [[nodiscard]] double maxdist() const; ///< distance of the last sample, m; 0 without a trace
    [[nodiscard]] double dataSpacing() const; ///< between samples, ns round trip
    [[nodiscard]] double
    smpl2dist(double samples) const; ///< length of so many sample steps, m; 0 without a trace

    /// Level at a distance from the start of the fibre, dB, linear between samples; the first and
    /// last sample continue beyond the trace. 0 without a trace.
    [[nodiscard]] float powerAtDist(double distance_m) const;

    [[nodiscard]] double IOR() const; // NOLINT(readability-identifier-naming): a given name
    void setIOR(double ior); // NOLINT(readability-identifier-naming)
    [[nodiscard]] double helix() const;
    void setHelix(double helix_percent);

    [[nodiscard]] EventList getEventList() const;
    void setEventList(const EventList& events, int processing = FromAcquisition);

    [[nodiscard]] WfMeasParams parameters() const;

    /// One line of the measurement parameters, such as "1550 nm, 100 ns, 15 s, IOR 1.4682". With
    /// "-" for what is not told; a realtime measurement has no time.
    [[nodiscard]] QString paramsToString() const;

    /// Null where the trace is invalid. A later change of the trace does not change what was
    /// returned.
    [[nodiscard]] std::shared_ptr<const SorData> sorData() const;
    void setSupParams(const SupParamsBlock& params);

    /// Computes end-to-end loss and return loss into the key-events data; makes that block in any
    /// case.
    void fillOrl();

    /// Writes a version 2 .sor file: whole or not at all. A trace that nobody changed keeps its
    /// bytes; of one that was changed notes() tells, once it is saved, what could not stay. \return
    /// 0 on success, -1 otherwise; the reason is in saveError if given
    int save(const QString& fileName, QString* saveError = nullptr);

    /// The samples with their axis, for calculators. Null where the trace is invalid.
    [[nodiscard]] std::shared_ptr<const otdr::Trace> trace() const;

    /// Everything known about the trace at one moment, for calculators. Null for an empty handle.
    [[nodiscard]] std::shared_ptr<const TraceState> state() const;

    /// What the detection finds on the trace as it is, sought once; null without a trace. From any
    /// thread.
    [[nodiscard]] std::shared_ptr<const otdr::Detection> detection() const;

    /// The same trace; two empty handles are equal.
    friend bool operator==(const Reflectogram& a, const Reflectogram& b);

    friend bool operator!=(const Reflectogram& a, const Reflectogram& b) { return !(a == b); }

private:
    class Shared;
    bool load(const QString& fileName, const WfMeasParams* params, bool asMeasurement);
    void addNotes(const std::vector<std::string>& more);

    std::shared_ptr<Shared> shared;
};

Q_DECLARE_METATYPE(Reflectogram)
