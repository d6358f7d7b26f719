#include "tests/programs/wfevfind/finderrun.h"

#include <QJsonDocument>
#include <QProcess>
#include <QProcessEnvironment>

#include <gmock/gmock.h>

namespace wfevfind_test {

using namespace testing_support;

Outcome run(const QStringList& arguments, const char* locale)
{
    QProcess process;
    if (locale != nullptr) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LC_ALL", locale);
        process.setProcessEnvironment(environment);
    }
    process.start(QStringLiteral(WAVEFORM_BIN "/wfevfind"), arguments);
    EXPECT_TRUE(process.waitForFinished(20'000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

namespace {

QList<Found> parsed(const QByteArray& output)
{
    QList<Found> lines;
    EXPECT_TRUE(output.isEmpty() || output.endsWith('\n'));
    for (const QByteArray& line : output.split('\n')) {
        if (line.isEmpty()) {
            continue;
        }
        const QList<QByteArray> parts = line.split(' ');
        EXPECT_TRUE(parts.size() == 3 && parts[1] == "=") << line.toStdString();
        lines << Found {parts.value(0), parts.value(2).toLong()};
    }
    return lines;
}

} // namespace

QString kindsOf(const QList<Found>& lines)
{
    QString kinds;
    for (const Found& line : lines) {
        kinds += line.kind;
    }
    return kinds;
}

QList<Found> linesOf(const QString& path)
{
    const Outcome outcome = run({"-i", path});
    EXPECT_EQ(outcome.code, 0) << outcome.err.toStdString();
    EXPECT_EQ(outcome.err, "");
    return parsed(outcome.out);
}

QJsonObject jsonOf(const QString& path)
{
    const Outcome outcome = run({"-i", path, "--json"});
    EXPECT_EQ(outcome.code, 0) << outcome.err.toStdString();
    EXPECT_EQ(outcome.out.count('\n'), 1);
    return QJsonDocument::fromJson(outcome.out).object();
}

TraceBuilder link()
{
    return TraceBuilder()
        .fibre(12_km)
        .connector(3_km, 0.5_dB, 10_dB)
        .splice(6_km, 0.3_dB)
        .splice(9_km, Decibels {-0.2})
        .behind(3000)
        .noise(0.01_dB, 4)
        .noiseFloor(8_dB);
}

SorSketch sorOf(const TraceBuilder& builder)
{
    SorSketch sketch = SorSketch::plain();
    sketch.samples = builder.counts();
    sketch.leftOut = {"KeyEvents"};
    return sketch;
}

void expectFailure(const Outcome& outcome, int code, const char* part)
{
    EXPECT_EQ(outcome.code, code);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(outcome.err.startsWith("wfevfind: ")) << outcome.err.toStdString();
    EXPECT_EQ(outcome.err.count('\n'), 1) << outcome.err.toStdString();
    EXPECT_THAT(outcome.err.toStdString(), testing::HasSubstr(part));
}

} // namespace wfevfind_test
