#include "platform/launcher/configstore.h"
#include "platform/launcher/zuconfig.h"
#include "platform/launcher/zulauncherconfig.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/support/contents.h"
#include "tests/support/warnings.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <cstdio>

using testing_support::ConfigHome;
using testing_support::contents;

namespace {

void write(const QString& file, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    QFile opened(file);
    ASSERT_TRUE(opened.open(QIODevice::WriteOnly));
    opened.write(bytes);
}

} // namespace

TEST(ZuConfig, StoresOneFileForAModuleWithItsGroups)
{
    const ConfigHome home;
    EXPECT_TRUE(ZuConfig("zuotdr", "MeasParams", "pulse").store(275));
    EXPECT_TRUE(ZuConfig("zu-launcher", "flash", "save").store(true));
    const QByteArray bytes = contents(home.file("zuotdr"));
    EXPECT_TRUE(bytes.contains("[MeasParams]")) << bytes.constData();
    EXPECT_TRUE(bytes.contains("pulse=275")) << bytes.constData();
    EXPECT_TRUE(contents(home.file("zu-launcher")).contains("save=true"));
}

TEST(ZuConfig, AnswersGroupOrWholeModuleByFullNames)
{
    const ConfigHome home;
    ZuConfig("zuotdr", "MeasParams", "pulse").store(275);
    ZuConfig("zuotdr", "MeasParamsOld", "pulse").store(5);
    ZuConfig("zuotdr", "Simulation", "seed").store(7);
    EXPECT_EQ(ZuConfig("zuotdr", "").values(),
              (QVariantMap {{"MeasParams/pulse", "275"},
                            {"MeasParamsOld/pulse", "5"},
                            {"Simulation/seed", "7"}}));
    EXPECT_EQ(ZuConfig("zuotdr", "MeasParams").values(),
              (QVariantMap {{"MeasParams/pulse", "275"}}));
    EXPECT_EQ(ZuConfig("zuotdr", "Simulation", "seed").toString(), "7");
    EXPECT_FALSE(ZuConfig("zuotdr", "Simulation", "none").value().isValid());
    EXPECT_FALSE(ZuConfig("zuotdr", "Simulation").store(1)); // no key, nothing to store
}

TEST(ZuConfig, RoundTripsAwkwardTexts)
{
    const ConfigHome home;
    const QStringList texts {"a,b",
                             "/media/u/Трасса 1.json",
                             "semi;colon",
                             "quote\"s",
                             "back\\slash",
                             "@at",
                             "",
                             " blanks ",
                             "100%",
                             "1.4677",
                             "a=b#c",
                             "line\nbreak"};
    for (const QString& text : texts) {
        ASSERT_TRUE(ZuConfig("zuotdr", "Simulation", "fibre").store(text));
        EXPECT_EQ(ZuConfig("zuotdr", "Simulation", "fibre").toString(), text);
    }
}

TEST(ZuConfig, ReadsABareCommaInAnEditedFileAsText)
{
    const ConfigHome home;
    write(home.file("zuotdr"), "[Simulation]\nfibre=a,b\n");
    EXPECT_EQ(ZuConfig("zuotdr", "Simulation", "fibre").toString(), "a,b");
}

TEST(ZuConfig, SeesAFileThatChangedOnDisk)
{
    const ConfigHome home;
    write(home.file("zuotdr"), "[MeasParams]\npulse=30\n");
    EXPECT_EQ(ZuConfig("zuotdr", "MeasParams", "pulse").toString(), "30");
    write(home.file("zuotdr"), "[MeasParams]\npulse=1000\n");
    EXPECT_EQ(ZuConfig("zuotdr", "MeasParams", "pulse").toString(), "1000");
}

TEST(ZuConfig, SeesAFileOfTheSameSizeThatTookItsPlace)
{
    const ConfigHome home;
    const ZuConfig pulse("zuotdr", "MeasParams", "pulse");
    write(home.file("zuotdr"), "[MeasParams]\npulse=100\n");
    EXPECT_EQ(pulse.toString(), "100");
    write(home.file("other"), "[MeasParams]\npulse=275\n");
    QFile other(home.file("other"));
    ASSERT_TRUE(other.open(QIODevice::ReadWrite));
    ASSERT_TRUE(other.setFileTime(QDateTime::currentDateTime().addSecs(-3600),
                                  QFileDevice::FileModificationTime)); // an older file, even
    other.close();
    ASSERT_EQ(std::rename(qPrintable(home.file("other")), qPrintable(home.file("zuotdr"))), 0);
    EXPECT_EQ(pulse.toString(), "275");
    ASSERT_TRUE(QFile::remove(home.file("zuotdr")));
    EXPECT_FALSE(pulse.value().isValid());
}

TEST(ZuConfig, SeesEachOfManyWritesInARow)
{
    const ConfigHome home;
    ZuConfig pulse("zuotdr", "MeasParams", "pulse");
    for (int value = 100; value < 200;
         ++value) { // all of one size, and in a few ticks of the clock
        ASSERT_TRUE(pulse.store(value));
        ASSERT_EQ(pulse.toString(), QString::number(value));
    }
}

TEST(ZuConfig, ReplacesTheFileWholeAndLeavesNothingBeside)
{
    const ConfigHome home;
    ZuConfig("zuotdr", "MeasParams", "pulse").store(30);
    QFile old(home.file("zuotdr"));
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    ZuConfig("zuotdr", "MeasParams", "pulse").store(1000);
    EXPECT_TRUE(old.readAll().contains("pulse=30")); // the old file itself was never written to
    EXPECT_TRUE(contents(home.file("zuotdr")).contains("pulse=1000"));
    EXPECT_EQ(QDir(configstore::directory()).entryList(QDir::Files | QDir::Hidden),
              QStringList {"zuotdr.ini"});
}

TEST(ZuConfig, ReadsWhatItCanOfADamagedFileAndSaysSoOnce)
{
    const ConfigHome home;
    write(home.file("zuotdr"), "garbage without a sense\n[MeasParams]\npulse=30\n\x01\xff\n");
    testing_support::expectWarning("damaged lines are ignored in");
    EXPECT_EQ(ZuConfig("zuotdr", "MeasParams", "pulse").toString(), "30");
    EXPECT_EQ(ZuConfig("zuotdr", "MeasParams", "pulse").toString(), "30");
}

TEST(ZuConfig, StoresIntoADamagedFileAndKeepsWhatWasReadable)
{
    const ConfigHome home;
    write(home.file("zuotdr"), "garbage without a sense\n[MeasParams]\npulse=30\n");
    EXPECT_TRUE(ZuConfig("zuotdr", "MeasParams", "duration").store(45));
    EXPECT_EQ(ZuConfig("zuotdr", "").values(),
              (QVariantMap {{"MeasParams/pulse", "30"}, {"MeasParams/duration", "45"}}));
}

TEST(ZuConfig, GoesOnWithoutADirectoryItCanWriteAndSaysSoOnce)
{
    const ConfigHome home;
    const QString notADirectory = home.path() + "/file";
    write(notADirectory, "x");
    ConfigHome::point(notADirectory.toLocal8Bit());
    testing_support::expectWarning("settings cannot be written to");
    EXPECT_FALSE(ZuConfig("zuotdr", "MeasParams", "pulse").store(275));
    EXPECT_FALSE(ZuConfig("zuotdr", "MeasParams", "duration").store(30));
    EXPECT_EQ(ZuConfig("zuotdr", "MeasParams", "pulse").toString(), "275");
    EXPECT_EQ(ZuConfig("zuotdr", "").values().value("MeasParams/duration").toString(), "30");
    EXPECT_EQ(contents(notADirectory), "x");
}

TEST(ZuConfig, WritesWhatWaitedOnceTheDirectoryCanBeWritten)
{
    const ConfigHome home;
    const QString place = home.path() + "/later";
    write(place, "x");
    ConfigHome::point(place.toLocal8Bit());
    testing_support::expectWarning("settings cannot be written to");
    EXPECT_FALSE(ZuConfig("zuotdr", "MeasParams", "pulse").store(275));
    ASSERT_TRUE(QFile::remove(place));
    EXPECT_TRUE(ZuConfig("zuotdr", "MeasParams", "duration").store(30));
    const QByteArray bytes = contents(place + "/waveform/zuotdr.ini");
    EXPECT_TRUE(bytes.contains("pulse=275")) << bytes.constData();
    EXPECT_TRUE(bytes.contains("duration=30")) << bytes.constData();
}

TEST(ZuConfig, IgnoresARelativeConfigurationHome)
{
    const ConfigHome home;
    ConfigHome::point("relative/place");
    EXPECT_FALSE(configstore::directory().contains("relative/place"));
    EXPECT_TRUE(QDir::isAbsolutePath(configstore::directory()));
}

TEST(ZuConfig, ShowsAValueOfThisRunToEveryoneAndNeverStoresIt)
{
    const ConfigHome home;
    ZuConfig("zuotdr", "MeasParams", "pulse").store(100);
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "pulse", 1000);
    ZuConfig::setForThisRun("zuotdr", "Simulation", "seed", 42);
    EXPECT_EQ(ZuConfig("zuotdr", "MeasParams", "pulse").toString(), "1000");
    EXPECT_EQ(ZuConfig("zuotdr", "").values().value("MeasParams/pulse").toString(), "1000");
    EXPECT_EQ(ZuConfig("zuotdr", "Simulation").values().value("Simulation/seed").toString(), "42");

    ZuConfig("zuotdr", "MeasParams", "duration").store(30); // writes the file
    const QByteArray bytes = contents(home.file("zuotdr"));
    EXPECT_TRUE(bytes.contains("pulse=100\n")) << bytes.constData();
    EXPECT_FALSE(bytes.contains("seed")) << bytes.constData();

    ZuConfig::clearThisRun();
    EXPECT_EQ(ZuConfig("zuotdr", "MeasParams", "pulse").toString(), "100");
}

TEST(ZuConfig, EndsAValueOfThisRunWhenTheUserStoresAnother)
{
    const ConfigHome home;
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "pulse", 1000);
    ZuConfig("zuotdr", "MeasParams", "pulse").store(30);
    EXPECT_EQ(ZuConfig("zuotdr", "MeasParams", "pulse").toString(), "30");
    EXPECT_TRUE(contents(home.file("zuotdr")).contains("pulse=30"));
}

TEST(ZuLauncherConfig, AnswersItsDefaultsUntilSomethingIsStored)
{
    const ConfigHome home;
    EXPECT_EQ(ZuLauncherConfig("paths", "otdr", "zu-launcher").toString(), "otdr");
    EXPECT_EQ(ZuLauncherConfig("flash", "dir", "zu-launcher").toString(), "/media/usb");
    EXPECT_FALSE(ZuLauncherConfig("flash", "save", "zu-launcher").toBool());
    EXPECT_FALSE(ZuLauncherConfig("flash", "no such", "zu-launcher").value().isValid());
    EXPECT_TRUE(ZuLauncherConfig("flash", "save").store(true));
    EXPECT_TRUE(ZuLauncherConfig("flash", "save", "zu-launcher").toBool());
    EXPECT_TRUE(ZuLauncherConfig("flash", "save").store(false));
    EXPECT_FALSE(ZuLauncherConfig("flash", "save", "zu-launcher").toBool());
}
