// The application started again while it runs, and with names that are no text.

#include "app/environment.h"
#include "app/filename.h"
#include "app/handover.h"
#include "app/openrequests.h"
#include "platform/otdr/reflectogram.h"
#include "tests/app/application.h"

#include <QImage>
#include <QSignalSpy>

#include <cstdio>

namespace {

using namespace testing_support; // the fixture and builders

/// A name that is no text in any encoding of today.
const QByteArray kOddName = "k\xFF\xFE bel.sor";

class SecondStart : public Application
{
protected:
    SecondStart() { QDir().mkpath(AcquisitionDir::path()); }

    /// This process is the instance that runs.
    void beFirst()
    {
        ASSERT_EQ(environment.enter(), "");
        ASSERT_EQ(requests.listen(handover::address(Environment::temporaryDir())), "");
    }

    /// Runs the program with one argument given by its bytes, which a QProcess cannot do.
    Outcome runRaw(const QByteArray& argument, const QString& more = {}) const
    {
        QString printed;
        for (const char byte : argument) {
            printed += QString("\\%1").arg(static_cast<uchar>(byte), 3, 8, QChar('0'));
        }
        return start("/bin/sh",
                     {"-c",
                      QString("cd '%1' && exec '%2' %3 \"$(printf '%4')\"")
                          .arg(dir.path(), program(), more, printed)});
    }

    /// Gone at the end of the test: Qt would not find it to clean up.
    QByteArray oddFile()
    {
        const QByteArray plain = QFile::encodeName(files.write("a.sor", SorSketch::plain()));
        QByteArray odd = QFile::encodeName(dir.path()) + '/' + kOddName;
        EXPECT_EQ(std::rename(plain.constData(), odd.constData()), 0);
        return odd;
    }

    void TearDown() override
    {
        std::remove((QFile::encodeName(dir.path()) + '/' + kOddName).constData());
    }

    Environment environment;
    OpenRequests requests;
    QSignalSpy requested {&requests, &OpenRequests::requested};
};

TEST_F(SecondStart, HandsItsFilesOverByTheirWholeNames)
{
    beFirst();
    const QString file = files.write("a b.sor", SorSketch::plain());
    const Outcome outcome = run({file, "/nowhere/b.sor"});
    EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.err);
    EXPECT_EQ(outcome.out, "Given to the window of Waveform that runs already.\n");
    ASSERT_EQ(requested.size(), 1);
    EXPECT_EQ(requested.first().first().toStringList(), (QStringList {file, "/nowhere/b.sor"}));
}

TEST_F(SecondStart, HandsANameOverThatIsNoTextAndRelative)
{
    beFirst();
    EXPECT_EQ(runRaw(kOddName).code, 0);
    ASSERT_EQ(requested.size(), 1);
    const QString name = requested.first().first().toStringList().value(0);
    EXPECT_EQ(filename::toRaw(name),
              QFile::encodeName(QFileInfo(dir.path()).canonicalFilePath()) + '/' + kOddName);
}

TEST_F(SecondStart, WithoutFilesSaysSo)
{
    beFirst();
    const Outcome outcome = run({});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "Waveform is running already: see its window.\n");
    EXPECT_EQ(requested.size(), 1) << "the window would stay where it is";
}

TEST_F(SecondStart, SaysThatSettingsForARunAreNotTaken)
{
    beFirst();
    const Outcome outcome = run({"--pulse", "30"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(outcome.err.contains("settings")) << qPrintable(outcome.err);
}

TEST_F(SecondStart, SaysThatTheFirstDoesNotAnswer)
{
    ASSERT_EQ(environment.enter(), "");
    const Outcome outcome = run({"a.sor"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.count('\n'), 1) << qPrintable(outcome.err);
    EXPECT_TRUE(outcome.err.contains("does not answer")) << qPrintable(outcome.err);
}

TEST_F(SecondStart, WithNobodyAtTheScreenIsRefused)
{
    beFirst();
    const Outcome outcome = run({"--demo", dir.filePath("demo"), "--time-scale", "0"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(outcome.err.contains("another instance")) << qPrintable(outcome.err);
    EXPECT_TRUE(requested.isEmpty());
}

TEST_F(SecondStart, FindsARealFirstOneAndOpensThere)
{
    QProcess first;
    QProcessEnvironment home = QProcessEnvironment::systemEnvironment();
    home.insert("HOME", dir.path());
    home.insert("WAVEFORM_PROGRAMS", WAVEFORM_BIN);
    home.remove("XDG_CONFIG_HOME");
    first.setProcessEnvironment(home);
    first.start(program(), QStringList());
    const QString socket = handover::address(AcquisitionDir::path());
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(socket); }, 30'000));
    const Outcome outcome = run({files.write("a.sor", SorSketch::plain())});
    EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.err);
    EXPECT_EQ(first.state(), QProcess::Running);
    first.kill();
    EXPECT_TRUE(first.waitForFinished(10'000));
}

TEST_F(SecondStart, OddNameOnTheCommandLineIsOpened)
{
    const QByteArray file = oddFile();
    for (const QByteArray& argument : {file, kOddName}) {
        const Outcome outcome = runRaw(argument, "--screenshot p.png");
        EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.err);
        EXPECT_EQ(outcome.err, "");
        EXPECT_TRUE(QFile::remove(dir.filePath("p.png")));
    }
}

TEST_F(SecondStart, OddNameThatIsMissingIsNamed)
{
    const Outcome outcome = runRaw("gone\xFF.sor", "--screenshot p.png");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(outcome.err.contains("gone")) << qPrintable(outcome.err);
}

TEST_F(SecondStart, WithNobodyAtTheScreenLeavesTheUsersConfigurationAlone)
{
    const QString place = dir.filePath(".config/waveform/zu-launcher.ini");
    QDir(dir.path()).mkpath(".config/waveform");
    QFile config(place);
    ASSERT_TRUE(config.open(QIODevice::WriteOnly));
    config.write("[window]\nplace=640x480+0+0\n");
    config.close();
    ASSERT_EQ(
        run({"--screenshot", dir.filePath("p.png"), files.write("a.sor", SorSketch::plain())}).code,
        0);
    ASSERT_EQ(run({"--demo", dir.filePath("demo"), "--time-scale", "0"}).code, 0);
    EXPECT_EQ(QImage(dir.filePath("p.png")).size(), QSize(1280, 800));
    ASSERT_TRUE(config.open(QIODevice::ReadOnly));
    EXPECT_EQ(config.readAll(), "[window]\nplace=640x480+0+0\n");
    EXPECT_EQ(QDir(dir.filePath(".config/waveform")).entryList(QDir::Files).size(), 1);
}

} // namespace
