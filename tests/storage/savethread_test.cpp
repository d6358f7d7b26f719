#include "storage/savethread.h"
#include "tests/support/contents.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <QDir>
#include <QImage>
#include <QTest>

#include <gmock/gmock.h>

namespace {

using testing_support::Bytes;
using testing_support::FakePrograms;
using testing_support::logged;
using testing_support::messages;
using testing_support::TraceFiles;
using Waveform::SaveThread;

/// Writes the report, and its picture beside it, as the real one does.
constexpr const char* kReport = R"(echo report > "$4"; echo picture > "${4%.html}.png")";

class Save : public testing::Test
{
protected:
    Save()
    {
        programs.make("otdrreport", kReport);
        thread.refl = files.plain();
        thread.sor = files.path("out.sor");
        thread.html = files.path("out.html");
        QObject::connect(
            &thread, &SaveThread::saved, &thread,
            [this](const QString& sor, const QString& html, bool success) {
                saved << QVariantList {sor, html, success};
            },
            Qt::DirectConnection);
    }

    void run()
    {
        thread.start();
        ASSERT_TRUE(thread.wait(20'000));
    }

    [[nodiscard]] QList<QVariantList> outcome(bool success) const
    {
        return {{thread.sor, thread.html, success}};
    }

    [[nodiscard]] QByteArray contents(const QString& name) const
    {
        return testing_support::contents(files.path(name));
    }

    /// The line of the log about the report generator; what it says behind its command line.
    [[nodiscard]] QString reportLine(const QString& end) const
    {
        return "Report generator \"" + programs.path("otdrreport") + "\" with arguments \"-i, "
            + thread.sor + ", -o, " + thread.html + "\" " + end;
    }

    const FakePrograms programs;
    TraceFiles files;
    SaveThread thread;
    QList<QVariantList> saved;
};

TEST_F(Save, WritesTheTraceAndItsReportAndSaysSo)
{
    run();
    EXPECT_EQ(thread.result, 0);
    EXPECT_EQ(saved, outcome(true));
    EXPECT_TRUE(Reflectogram(thread.sor).isValid());
    EXPECT_EQ(contents("out.html"), "report\n");
    EXPECT_EQ(contents("out.png"), "picture\n");
    EXPECT_FALSE(logged("Report generator"));
}

TEST_F(Save, ArgumentsComeInTheirOrder)
{
    EXPECT_EQ(SaveThread::reportArguments("a.sor", "b.html", "c.html"),
              QStringList({"-i", "a.sor", "-o", "b.html", "-t", "c.html"}));
}

TEST_F(Save, EmptyTemplateIsNotPassed)
{
    EXPECT_EQ(SaveThread::reportArguments("a.sor", "b.html", ""),
              QStringList({"-i", "a.sor", "-o", "b.html"}));
    programs.make("otdrreport", R"(echo "$#" > "$4")");
    run();
    EXPECT_EQ(contents("out.html"), "4\n");
}

TEST_F(Save, TemplateIsPassed)
{
    programs.make("otdrreport", R"(echo "$5 $6" > "$4")");
    thread.templ = "/some/where/own template.html";
    run();
    EXPECT_EQ(contents("out.html"), "-t /some/where/own template.html\n");
}

TEST_F(Save, InvalidTraceIsNeverSavedAndSaysNothing)
{
    thread.refl = Reflectogram();
    run();
    EXPECT_NE(thread.result, 0);
    EXPECT_TRUE(saved.isEmpty());
    EXPECT_FALSE(QFile::exists(thread.sor));
    EXPECT_FALSE(QFile::exists(thread.html));
}

TEST_F(Save, FailedTraceSkipsTheReportAndTheCopy)
{
    thread.sor = files.path("no/such/directory/out.sor");
    thread.flashDir = files.path("flash");
    run();
    EXPECT_NE(thread.result, 0);
    EXPECT_EQ(saved, outcome(false));
    EXPECT_FALSE(QFile::exists(thread.html));
    EXPECT_TRUE(logged("can not save"));
    EXPECT_TRUE(logged(thread.sor));
    EXPECT_FALSE(logged("can not copy")) << "there was nothing to copy";
}

TEST_F(Save, MissingGeneratorLeavesTheTraceWritten)
{
    QFile::remove(programs.path("otdrreport"));
    run();
    EXPECT_EQ(thread.result, -2);
    EXPECT_EQ(saved, outcome(false));
    EXPECT_TRUE(Reflectogram(thread.sor).isValid());
    EXPECT_TRUE(logged(reportLine("can not be started"))) << qPrintable(messages());
}

TEST_F(Save, GeneratorThatFailsIsLoggedWithItsCode)
{
    programs.make("otdrreport", "exit 3");
    thread.flashDir = files.path("flash");
    QDir().mkpath(thread.flashDir);
    run();
    EXPECT_EQ(thread.result, 3);
    EXPECT_EQ(saved, outcome(false));
    EXPECT_TRUE(logged(reportLine("has return code 3"))) << qPrintable(messages());
    EXPECT_TRUE(QDir(thread.flashDir).isEmpty()) << "half a result was copied";
}

TEST_F(Save, GeneratorThatCrashesIsLoggedAsSuch)
{
    programs.make("otdrreport", "kill -9 $$");
    run();
    EXPECT_EQ(thread.result, -1);
    EXPECT_EQ(saved, outcome(false));
    EXPECT_TRUE(logged(reportLine("crashed"))) << qPrintable(messages());
}

TEST_F(Save, GeneratorThatHangsEndsWhenAskedTo)
{
    programs.make("otdrreport", "echo > \"$4\"; exec sleep 60");
    thread.start();
    ASSERT_TRUE(QTest::qWaitFor([this] { return QFile::exists(thread.html); }, 10'000));
    EXPECT_TRUE(thread.isRunning());
    thread.requestInterruption();
    ASSERT_TRUE(thread.wait(20'000));
    EXPECT_EQ(saved, outcome(false));
    EXPECT_TRUE(Reflectogram(thread.sor).isValid());
}

TEST_F(Save, GeneratorThatReadsItsInputFindsItsEnd)
{
    programs.make("otdrreport", R"(cat > "$4"; echo report >> "$4")");
    run();
    EXPECT_EQ(thread.result, 0);
    EXPECT_EQ(contents("out.html"), "report\n");
}

TEST_F(Save, CopyThatHangsEndsWhenAskedTo)
{
    programs.make("otdrreport", R"(echo report > "$4"; mkfifo "${4%.html}.png")");
    thread.flashDir = files.path("flash");
    QDir().mkpath(thread.flashDir);
    thread.start();
    ASSERT_TRUE(
        QTest::qWaitFor([this] { return QFile::exists(files.path("flash/out.html")); }, 10'000));
    EXPECT_FALSE(thread.wait(200));
    thread.requestInterruption();
    ASSERT_TRUE(thread.wait(20'000));
    EXPECT_EQ(saved, outcome(true)) << "all is saved, whatever becomes of the copy";
    EXPECT_TRUE(Reflectogram(thread.sor).isValid());
    EXPECT_TRUE(Reflectogram(files.path("flash/out.sor")).isValid());
    EXPECT_TRUE(logged("can not copy \"" + files.path("out.png") + "\" to \""
                       + files.path("flash/out.png") + "\" \"given up\""))
        << qPrintable(messages());
}

TEST_F(Save, OutcomeComesToTheThreadOfWhoListens)
{
    QThread* told = nullptr;
    QObject listener;
    QObject::connect(&thread, &SaveThread::saved, &listener,
                     [&told] { told = QThread::currentThread(); });
    run();
    EXPECT_EQ(told, nullptr) << "it waits for the event loop";
    QCoreApplication::processEvents();
    EXPECT_EQ(told, QThread::currentThread());
}

TEST_F(Save, RemovesWhatKilledSavesLeft)
{
    files.write(".waveform-2147483646-0", Bytes(10)); // no process has this number
    run();
    EXPECT_EQ(thread.result, 0);
    EXPECT_FALSE(QFile::exists(files.path(".waveform-2147483646-0")));
}

TEST_F(Save, RealGeneratorMakesPageAndPicture)
{
    qputenv("WAVEFORM_PROGRAMS", WAVEFORM_BIN); // the fake one restores it
    run();
    EXPECT_EQ(thread.result, 0);
    EXPECT_TRUE(contents("out.html").startsWith("<!DOCTYPE html>"));
    EXPECT_FALSE(QImage(files.path("out.png")).isNull());
}

TEST_F(Save, CopiesAllThreeToTheFlashDriveAndReplacesWhatIsThere)
{
    thread.flashDir = files.path("flash");
    QDir().mkpath(thread.flashDir);
    for (const char* name : {"flash/out.sor", "flash/out.html", "flash/out.png"}) {
        files.write(name, Bytes(10));
    }
    run();
    EXPECT_EQ(thread.result, 0);
    EXPECT_TRUE(Reflectogram(thread.flashDir + "/out.sor").isValid());
    EXPECT_EQ(contents("flash/out.html"), "report\n");
    EXPECT_EQ(contents("flash/out.png"), "picture\n");
    EXPECT_EQ(QDir(thread.flashDir).entryList(QDir::Files).size(), 3);
}

TEST_F(Save, DriveThatIsWhereEverythingIsSavedLosesNothing)
{
    ASSERT_TRUE(QFile::link(files.path("."), files.path("link")));
    for (const QString& drive : {files.path("."), files.path("link")}) {
        thread.flashDir = drive;
        run();
        EXPECT_EQ(thread.result, 0);
        EXPECT_TRUE(Reflectogram(thread.sor).isValid()) << drive.toStdString();
        EXPECT_EQ(contents("out.html"), "report\n");
        EXPECT_EQ(contents("out.png"), "picture\n");
    }
    EXPECT_FALSE(logged("can not copy"));
}

TEST_F(Save, PictureHasTheWholeNameOfItsReport)
{
    thread.sor = files.path("north.2.sor");
    thread.html = files.path("north.2.html");
    thread.flashDir = files.path("flash");
    QDir().mkpath(thread.flashDir);
    run();
    EXPECT_EQ(contents("flash/north.2.png"), "picture\n");
    EXPECT_FALSE(logged("can not copy"));
}

TEST_F(Save, ReportTellsHowItsGeneratorEnded)
{
    EXPECT_EQ(thread.generateReport(thread.sor, thread.html, ""), 0);
    EXPECT_EQ(contents("out.html"), "report\n");
    programs.make("otdrreport", "exit 4");
    EXPECT_EQ(thread.generateReport(thread.sor, thread.html, ""), 4);
    programs.make("otdrreport", "kill -KILL $$");
    EXPECT_EQ(thread.generateReport(thread.sor, thread.html, ""), -1);
    QFile::remove(programs.path("otdrreport"));
    EXPECT_EQ(thread.generateReport(thread.sor, thread.html, ""), -2);
    EXPECT_TRUE(saved.isEmpty()) << "only the thread says that";
}

TEST_F(Save, CopyTellsWhetherAllFilesWereCopied)
{
    thread.flashDir = files.path("flash");
    QDir().mkpath(thread.flashDir);
    for (const char* name : {"out.sor", "out.png"}) {
        files.write(name, Bytes(10));
    }
    EXPECT_FALSE(thread.copyFiles()) << "there is no report";
    EXPECT_TRUE(QFile::exists(files.path("flash/out.sor")));
    EXPECT_TRUE(QFile::exists(files.path("flash/out.png")));
    files.write("out.html", Bytes(10));
    EXPECT_TRUE(thread.copyFiles());
    EXPECT_TRUE(QFile::exists(files.path("flash/out.html")));
}

TEST_F(Save, FailedCopyIsLoggedAndAllStaysSaved)
{
    thread.flashDir = files.path("pulled");
    run();
    EXPECT_EQ(thread.result, 0);
    EXPECT_EQ(saved, outcome(true));
    EXPECT_TRUE(QFile::exists(thread.sor));
    EXPECT_EQ(messages().count("can not copy"), 3) << "one is no reason to leave the others";
}

} // namespace
