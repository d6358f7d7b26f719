#include "tests/support/tracefiles.h"

#include "platform/otdr/core/snapshot.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace testing_support {

QString TraceFiles::path(const QString& name) const
{
    return dir.filePath(name);
}

QString TraceFiles::write(const QString& name, const SorSketch& sketch) const
{
    return write(name, sketch.build());
}

QString TraceFiles::write(const QString& name, const Bytes& bytes) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
    return path(name);
}

QString TraceFiles::writeSnapshot(const QString& name, const TraceBuilder& builder,
                                  double interval_ns, double firstSample_ns) const
{
    otdr::Snapshot snapshot;
    snapshot.sampleInterval_ns = interval_ns;
    snapshot.firstSample_ns = firstSample_ns;
    snapshot.pulse_ns = 100;
    snapshot.wavelength_nm = 1550;
    snapshot.averages = 64;
    snapshot.samples = otdr::RawSamples(builder.counts());
    return write(name, otdr::encodeSnapshot(snapshot));
}

Reflectogram TraceFiles::plain(const QString& name) const
{
    return Reflectogram(write(name, SorSketch::plain()));
}

Reflectogram TraceFiles::measured(const TraceBuilder& builder, const WfMeasParams& params) const
{
    return {writeSnapshot("wfsnapshot.bin", builder), params};
}

QStringList realTraces()
{
    QStringList files;
    const QDir traces(WAVEFORM_TRACES);
    for (const QString& name : traces.entryList({"*.sor"}, QDir::Files, QDir::Name)) {
        files << traces.filePath(name);
    }
    return files;
}

} // namespace testing_support
