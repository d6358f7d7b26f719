#pragma once

#include "platform/otdr/reflectogram.h"
#include "tests/support/sorsketch.h"
#include "tests/support/tracebuilder.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace testing_support {

/// A directory of trace files that goes with the test.
class TraceFiles
{
public:
    /// Path of a name in the directory.
    [[nodiscard]] QString path(const QString& name) const;

    /// Writes a trace file and tells its path.
    QString write(const QString& name, const SorSketch& sketch) const;
    QString write(const QString& name, const Bytes& bytes) const;

    /// Writes the samples as a snapshot of the acquisition program and tells its path.
    QString writeSnapshot(const QString& name, const TraceBuilder& builder,
                          double interval_ns = 10.0, double firstSample_ns = 0.0) const;

    /// A plain trace with its events, opened from a file of this name.
    [[nodiscard]] Reflectogram plain(const QString& name = "plain.sor") const;

    /// A trace just measured, from a snapshot of this builder.
    [[nodiscard]] Reflectogram measured(const TraceBuilder& builder,
                                        const WfMeasParams& params = WfMeasParams()) const;

private:
    QTemporaryDir dir;
};

/// The real trace files at hand; empty where there are none.
QStringList realTraces();

} // namespace testing_support
