// What the user is told where something that belongs to the application is missing or fails.

#include "app/missingprograms.h"
#include "tests/app/application.h"
#include "tests/app/hosting.h"
#include "tests/support/fakeprogram.h"

#include <QDir>

namespace {

using namespace testing_support; // fixtures

TEST(MissingPrograms, AreNamedWithThePathsThatWereTried)
{
    const FakePrograms programs;
    programs.make("wfgather", "exit 0");
    const QString text = missingPrograms();
    EXPECT_FALSE(text.contains(programs.path("wfgather")));
    EXPECT_TRUE(text.contains(programs.path("wfevfind"))) << qPrintable(text);
    EXPECT_TRUE(text.contains(programs.path("otdrreport")));
    EXPECT_EQ(text.count('\n'), 1);
}

TEST(MissingPrograms, AreThoseThatCannotBeRunToo)
{
    const FakePrograms programs;
    for (const char* name : {"wfgather", "wfevfind", "otdrreport"}) {
        programs.make(name, "exit 0");
    }
    EXPECT_EQ(missingPrograms(), "");
    QFile::setPermissions(programs.path("wfgather"), QFile::ReadOwner | QFile::WriteOwner);
    EXPECT_TRUE(missingPrograms().contains(programs.path("wfgather")));
    QFile::remove(programs.path("wfgather"));
    QDir().mkdir(programs.path("wfgather"));
    EXPECT_TRUE(missingPrograms().contains(programs.path("wfgather")));
}

class Trouble : public Hosting
{
};

TEST_F(Trouble, OfAProgramThatFailsAfterAGoodStartIsTold)
{
    load();
    const FakePrograms programs;
    programs.make("wfgather",
                  "printf '0 G {;'; sleep 0.2; echo 'the laser is too hot' >&2; exit 3");
    measure();
    EXPECT_TRUE(told().contains("failed (code 3): the laser is too hot")) << qPrintable(told());
    EXPECT_FALSE(told().contains('|')) << "it is told twice";
    EXPECT_EQ(action()->text(), "Start");
    EXPECT_TRUE(action()->isEnabled());
}

TEST_F(Trouble, OfAProgramThatIsMissingIsToldOnce)
{
    load();
    const FakePrograms programs;
    expectWarning("int OtdrMeasController::start()");
    expectWarning("onError");
    expectWarning("virtual int Waveform::Model::start(unsigned int)");
    QTest::mouseClick(action(), Qt::LeftButton);
    EXPECT_TRUE(told().contains("wfgather")) << qPrintable(told());
    EXPECT_FALSE(told().contains('|'));
    EXPECT_FALSE(told().contains("\n\n")) << qPrintable(told());
}

TEST_F(Trouble, OfAnEarlierRunIsForgotten)
{
    load();
    {
        const FakePrograms programs;
        programs.make("wfgather", "printf '0 G {;'; sleep 0.1; exit 3");
        measure();
    }
    ASSERT_NE(told(), "");
    for (WarningWindow* warning : host->frame()->findChildren<WarningWindow*>()) {
        QTest::keyClick(warning, Qt::Key_Escape);
    }
    ASSERT_TRUE(measure());
    EXPECT_EQ(told(), "");
}

class TroubleAtTheStart : public Application
{
protected:
    /// The application alone in a directory, without what is installed around it.
    QString alone() const
    {
        QDir(dir.path()).mkpath("bin");
        QString copy = dir.filePath("bin/waveform");
        EXPECT_TRUE(QFile::copy(program(), copy));
        return copy;
    }
};

TEST_F(TroubleAtTheStart, NamesThePluginThatIsMissing)
{
    const Outcome outcome = start(alone(), {});
    EXPECT_EQ(outcome.code, 1);
    const QString plugin = QFileInfo(dir.path()).canonicalFilePath() + "/bin/../lib/waveform.so";
    EXPECT_EQ(outcome.err, "waveform: the plugin " + plugin + " is missing\n");
}

TEST_F(TroubleAtTheStart, NamesThePluginThatIsNone)
{
    QDir(dir.path()).mkpath("lib");
    const QString plugin = files.write("junk", Bytes(5000));
    ASSERT_TRUE(QFile::copy(plugin, dir.filePath("lib/waveform.so")));
    const Outcome outcome = start(alone(), {});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(outcome.err.contains("/lib/waveform.so")) << qPrintable(outcome.err);
}

TEST_F(TroubleAtTheStart, SaysThatThereIsNoDisplay)
{
    const Outcome outcome =
        start(program(), {}, {{"QT_QPA_PLATFORM", {}}, {"DISPLAY", {}}, {"WAYLAND_DISPLAY", {}}});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.err.count('\n'), 1) << qPrintable(outcome.err);
    EXPECT_TRUE(outcome.err.contains("no display")) << qPrintable(outcome.err);
}

} // namespace
