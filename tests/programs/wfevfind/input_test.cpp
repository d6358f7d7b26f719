#include "platform/otdr/core/snapshot.h"
#include "tests/programs/wfevfind/finderrun.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdio>

namespace {

using namespace testing_support;
using namespace wfevfind_test;
using testing::HasSubstr;

class EvFindInput : public testing::Test
{
protected:
    TraceFiles files;
};

TEST_F(EvFindInput, SaysWhyATraceCannotBeSearched)
{
    SorSketch bare = sorOf(link());
    bare.leftOut = {"FxdParams"};
    expectFailure(run({"-i", files.write("bare.sor", bare)}), 1,
                  "bare.sor: events cannot be found: the spacing of the samples is not told");
    SorSketch noPulse = sorOf(link());
    noPulse.fxd.pulses.front().width_ns = 0;
    expectFailure(run({"-i", files.write("no.sor", noPulse), "--json"}), 1,
                  "no.sor: events cannot be found: the width of the pulse is not told");
}

TEST_F(EvFindInput, PulseOfOneNanosecondIsEnough)
{
    SorSketch shortest = sorOf(link());
    shortest.fxd.pulses.front().width_ns = 1;
    EXPECT_FALSE(linesOf(files.write("one.sor", shortest)).isEmpty());
}

TEST_F(EvFindInput, WhatIsNoTraceIsOneLineAndAnExitCode)
{
    expectFailure(run({"-i", files.path("missing.sor")}), 1, "missing.sor: No such file");
    expectFailure(run({"-i", files.path("")}), 1, "");
    expectFailure(run({"-i", files.write("text.sor", ByteSketch().text("no trace").done)}), 1,
                  "text.sor: ");
}

TEST_F(EvFindInput, DoesNotWaitForAPipe)
{
    const QString pipe = files.path("pipe.sor");
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    expectFailure(run({"-i", pipe}), 1, "pipe.sor: ");
}

TEST_F(EvFindInput, ADamagedSnapshotIsAnError)
{
    QFile file(files.writeSnapshot("good.bin", link()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray good = file.readAll();
    const auto saved = [this](const QByteArray& bytes) {
        QFile damaged(files.path("damaged.bin"));
        EXPECT_TRUE(damaged.open(QIODevice::WriteOnly | QIODevice::Truncate));
        damaged.write(bytes);
        return damaged.fileName();
    };
    for (const int size : {0, 3, 4, 47, 48, 49, static_cast<int>(good.size()) - 1}) {
        expectFailure(run({"-i", saved(good.left(size))}), 1, "damaged.bin");
    }
    for (const int at : {4, 8, 44, 48, 5000}) {
        QByteArray bytes = good;
        bytes[at] = static_cast<char>(bytes.at(at) ^ 0x55);
        expectFailure(run({"-i", saved(bytes)}), 1, "damaged.bin");
    }
}

TEST_F(EvFindInput, SurvivesTheMuseum)
{
    const QDir museum(QStringLiteral(WAVEFORM_TEST_DATA "/bad"));
    const QStringList names = museum.entryList({"*.sor"}, QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        for (const QStringList& form : {QStringList {}, QStringList {"--json"}}) {
            const Outcome outcome = run(QStringList {"-i", museum.filePath(name)} + form);
            EXPECT_TRUE(outcome.code == 0 || outcome.code == 1) << name.toStdString();
            EXPECT_EQ(outcome.err.count('\n'), outcome.code) << outcome.err.toStdString();
            EXPECT_TRUE(outcome.code == 0 || outcome.out.isEmpty()) << name.toStdString();
        }
    }
}

TEST_F(EvFindInput, FindsEventsOnRealTraces)
{
    const QStringList traces = realTraces();
    if (traces.isEmpty()) {
        GTEST_SKIP() << "no real traces beside this checkout";
    }
    for (const QString& path : traces) {
        const QJsonObject object = jsonOf(path);
        const int samples = object["samples"].toInt();
        EXPECT_GT(samples, 0) << path.toStdString();
        const QJsonArray events = object["events"].toArray();
        EXPECT_FALSE(events.isEmpty()) << path.toStdString();
        int last = 0;
        for (const QJsonValue& event : events) {
            EXPECT_GE(event["sample"].toInt(), last) << path.toStdString();
            last = event["sample"].toInt();
        }
        EXPECT_LT(last, samples) << path.toStdString();
        for (const Found& line : linesOf(path)) {
            EXPECT_TRUE(QString("rnpe").contains(line.kind)) << path.toStdString();
        }
    }
}

TEST_F(EvFindInput, TakesFileNamesByteForByteInAnyLocale)
{
    const QString path = files.writeSnapshot(QString::fromUtf8("m\u00E4rz \u2713 = 1.bin"), link());
    for (const char* locale : {"C", "C.UTF-8"}) {
        const Outcome outcome = run({"-i", path, "--json"}, locale);
        EXPECT_EQ(outcome.code, 0) << outcome.err.toStdString();
        EXPECT_EQ(QJsonDocument::fromJson(outcome.out).object()["file"].toString(), path);
    }
}

TEST_F(EvFindInput, TakesFileNamesThatAreNoTextOfTheLocale)
{
    const QByteArray plain = QFile::encodeName(files.writeSnapshot("plain.bin", link()));
    const QByteArray odd = QFile::encodeName(files.path("m")) + "\xE4rz.bin"; // as of long ago
    ASSERT_EQ(std::rename(plain.constData(), odd.constData()), 0);
    for (const char* locale : {"C", "C.UTF-8"}) {
        const QByteArray finder = "LC_ALL=" + QByteArray(locale) + " " WAVEFORM_BIN "/wfevfind";
        const QByteArray command =
            finder + " -i \"$(printf '" + QByteArray(odd).replace("\xE4", "\\344") + "')\"";
        QProcess shell;
        shell.start("/bin/sh", {"-c", QString::fromLatin1(command)});
        ASSERT_TRUE(shell.waitForFinished(20'000));
        EXPECT_EQ(shell.exitCode(), 0) << shell.readAllStandardError().toStdString();
    }
    EXPECT_EQ(std::remove(odd.constData()), 0); // which Qt cannot
}

TEST_F(EvFindInput, TellsTheNameOfASnapshotWithoutSamplesByteForByte)
{
    const QString path = files.write(QString::fromUtf8("m\u00E4rz \u2713.bin"),
                                     otdr::encodeSnapshot(otdr::Snapshot()));
    const QByteArray told = path.toUtf8() + ": ";
    for (const char* locale : {"C", "C.UTF-8"}) {
        expectFailure(run({"-i", path}, locale), 1, told.constData());
    }
}

TEST_F(EvFindInput, AFullDiskBehindStandardOutputIsAnError)
{
    const QStringList calls[] = {
        {"-i", files.writeSnapshot("snapshot.bin", link())}, {"--help"}, {"--version"}};
    for (const QStringList& arguments : calls) {
        QProcess process;
        process.setStandardOutputFile("/dev/full");
        process.start(QStringLiteral(WAVEFORM_BIN "/wfevfind"), arguments);
        ASSERT_TRUE(process.waitForFinished(20'000));
        EXPECT_EQ(process.exitCode(), 1) << qPrintable(arguments.join(' '));
        EXPECT_EQ(process.readAllStandardError(), "wfevfind: cannot write to standard output\n");
    }
}

TEST_F(EvFindInput, OfManyFilesThoseThatCannotBeReadAreToldAndTheOthersSearched)
{
    const QString snapshot = files.writeSnapshot("snapshot.bin", link());
    const QString trace = files.write("trace.sor", sorOf(link()));
    const Outcome outcome = run({"--json", snapshot, files.path("missing.sor"), trace});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.err.count('\n'), 1);
    EXPECT_THAT(outcome.err.toStdString(), HasSubstr("missing.sor: No such file"));
    EXPECT_EQ(outcome.out, run({"-i", snapshot, "--json"}).out + run({"-i", trace, "--json"}).out);
}

TEST_F(EvFindInput, ManyFilesEndWithTheFirstAnswerThatNobodyTakes)
{
    const QString file = files.writeSnapshot("snapshot.bin", link());
    QProcess process;
    process.setStandardOutputFile("/dev/full");
    process.start(QStringLiteral(WAVEFORM_BIN "/wfevfind"), {"--json", file, file, file});
    ASSERT_TRUE(process.waitForFinished(20'000));
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_EQ(process.readAllStandardError(), "wfevfind: cannot write to standard output\n");
}

TEST_F(EvFindInput, TellsAWrongCommandLineByItsExitCode)
{
    const QString file = files.writeSnapshot("snapshot.bin", link());
    const QStringList wrong[] = {{},
                                 {"--json"},
                                 {file},
                                 {"-i"},
                                 {"-i", ""},
                                 {"-i", file, file},
                                 {"-i", file, "-i", file},
                                 {"--json", "-i", file, "-i", file},
                                 {"--json", file, ""},
                                 {"-i", file, "--nonsense"},
                                 {"-o", file}};
    for (const QStringList& arguments : wrong) {
        expectFailure(run(arguments), 2, "; see --help");
    }
}

TEST_F(EvFindInput, ExplainsItself)
{
    const Outcome help = run({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_THAT(help.out.toStdString(), HasSubstr("KIND = SAMPLE"));
    EXPECT_THAT(help.out.toStdString(), HasSubstr("--json"));
    EXPECT_THAT(help.out.toStdString(), HasSubstr("index 1.4680")) << "of a snapshot";
    const Outcome version = run({"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_EQ(version.out, "wfevfind " WAVEFORM_VERSION "\n");
}

} // namespace
