#include "platform/launcher/zulauncherconfig.h"
#include "platform/otdr/core/sor.h"
#include "platform/otdr/tracestate.h"
#include "tests/storage/keeping.h"
#include "tests/support/warnings.h"

#include <QDir>
#include <QTimer>

namespace {

using namespace testing_support; // fixture, builder and units

TEST_F(Keeping, StoresUnderTheHomeDirectoryWhichItMakes)
{
    EXPECT_EQ(keeper.storeDir(), files.path("home/otdr"));
    EXPECT_TRUE(QDir(files.path("home/otdr")).exists());
    ZuLauncherConfig("paths", "otdr").store("traces/mine");
    EXPECT_EQ(keeper.storeDir(), files.path("home/traces/mine"));
    EXPECT_TRUE(QDir(files.path("home/traces/mine")).exists());
}

TEST_F(Keeping, DirectoryThatCannotBeMadeIsLoggedAndNamedAllTheSame)
{
    files.write("home", Bytes(1)); // a file where the directory should be
    EXPECT_EQ(keeper.storeDir(), files.path("home/otdr"));
    EXPECT_TRUE(logged("Can't create directory " + files.path("home/otdr") + " for saving"));
}

TEST_F(Keeping, FlashDirectoryHasTheSameSubPath)
{
    EXPECT_EQ(keeper.flashcardDir(), "/media/usb/otdr");
    ZuLauncherConfig("flash", "dir").store(files.path("stick"));
    EXPECT_EQ(keeper.flashcardDir(), files.path("stick/otdr"));
}

TEST_F(Keeping, NameIsTakenByATraceOrAReport)
{
    EXPECT_FALSE(keeper.fileExists("a"));
    QDir().mkpath(stored(""));
    files.write("home/otdr/a.sor", Bytes(1));
    files.write("home/otdr/b.html", Bytes(1));
    EXPECT_TRUE(keeper.fileExists("a"));
    EXPECT_TRUE(keeper.fileExists("b"));
    EXPECT_FALSE(keeper.fileExists("c"));
}

TEST_F(Keeping, FlashDriveCountsOnlyWhereCopyingIsOn)
{
    ZuLauncherConfig("flash", "dir").store(files.path("stick"));
    QDir().mkpath(files.path("stick/otdr"));
    files.write("stick/otdr/a.sor", Bytes(1));
    EXPECT_FALSE(keeper.fileExists("a"));
    ZuLauncherConfig("flash", "save").store(true);
    EXPECT_TRUE(keeper.fileExists("a"));
}

TEST_F(Keeping, ProposesNothingWithoutATraceAndTheFilesNameForALoadedOne)
{
    EXPECT_EQ(keeper.reportAutoName(), "");
    refls.addReflFromFile(files.write("north.first.sor", SorSketch::plain()));
    EXPECT_EQ(keeper.reportAutoName(), "north.first");
}

TEST_F(Keeping, ProposesANameByTheSchemeForAMeasurement)
{
    addMeasured();
    EXPECT_EQ(keeper.reportAutoName(), "trace_1550_0001");
    config->setting("reflNameScheme", "AdvancedParams")->tryChange(QString("link_pulse_index"));
    EXPECT_EQ(keeper.reportAutoName(), "link_100_0001");
}

TEST_F(Keeping, NameOfAGroupLeavesTheWavelengthToTheFiles)
{
    const Reflectogram first = addMeasured();
    const Reflectogram second = addMeasured();
    refls.associate(second, first);
    EXPECT_EQ(keeper.reportAutoName(), "trace_0001");
    config->setting("reflNameScheme", "AdvancedParams")->tryChange(QString());
    EXPECT_EQ(keeper.reportAutoName(), "trace_0001");
}

TEST_F(Keeping, SavesTheMainTraceUnderItsName)
{
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    EXPECT_EQ(keeper.doSave("link"), 0);
    EXPECT_TRUE(Reflectogram(stored("link.sor")).isValid());
    ASSERT_EQ(notified.size(), 1);
    EXPECT_EQ(notified.first().first().toString(),
              "Reports was saved to:\notdr/link.sor\notdr/link.html\n");
    ASSERT_EQ(saved.size(), 1);
    EXPECT_EQ(saved.first().first().toString(), stored("link"));
    ASSERT_EQ(waits.size(), 2);
    EXPECT_TRUE(waits.at(0).first().toBool());
    EXPECT_FALSE(waits.at(1).first().toBool());
}

TEST_F(Keeping, WithoutAHomeDirectoryPathsAreToldWhole)
{
    qunsetenv("HOME");
    ZuLauncherConfig("paths", "otdr").store(files.path("otdr").mid(1)); // below the root
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    EXPECT_EQ(keeper.doSave("link"), 0);
    const QString told = notified.first().first().toString();
    EXPECT_TRUE(told.contains(files.path("otdr/link.sor") + "\n")) << told.toStdString();
}

TEST_F(Keeping, SavesTracesMeasuredTogetherWithTheirWavelengths)
{
    SorSketch other = SorSketch::plain();
    other.gen.wavelength_nm = 1310;
    other.fxd.actualWavelength = 13100;
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    refls.addReflFromFile(files.write("b.sor", other));
    refls.associate(refls.refls()[1], refls.refls()[0]);
    EXPECT_EQ(keeper.doSave("link"), 0);
    EXPECT_EQ(Reflectogram(stored("link_1550nm.sor")).wavelength(), 1550);
    EXPECT_EQ(Reflectogram(stored("link_1310nm.sor")).wavelength(), 1310);
    EXPECT_EQ(QDir(stored("")).entryList(QDir::Files),
              QStringList({"link_1310nm.html", "link_1310nm.png", "link_1310nm.sor",
                           "link_1550nm.html", "link_1550nm.png", "link_1550nm.sor"}));
    EXPECT_EQ(saved.size(), 2);
    ASSERT_EQ(notified.size(), 2);
    EXPECT_EQ(notified.at(0).first().toString().count("_1550nm.html"), 1);
    EXPECT_EQ(notified.at(1).first().toString().count("_1310nm.html"), 1);
}

TEST_F(Keeping, TracesOfOneWavelengthInAGroupDoNotReplaceEachOther)
{
    for (const char* cable : {"first", "second", "third"}) {
        SorSketch sketch = SorSketch::plain();
        sketch.gen.cableId = cable;
        refls.addReflFromFile(files.write(QString(cable) + ".sor", sketch));
    }
    const QList<Reflectogram> traces = refls.refls();
    EXPECT_EQ(Keeper::suffixes(traces), QStringList({"_1550nm", "_1550nm_2", "_1550nm_3"}));
    EXPECT_EQ(Keeper::suffixes({traces[0]}), QStringList {""});
    refls.associate(traces[1], traces[0]);
    refls.setMainRefl(traces[0]);
    EXPECT_EQ(keeper.doSave("link"), 0);
    EXPECT_EQ(QDir(stored("")).entryList({"*.sor"}),
              QStringList({"link_1550nm.sor", "link_1550nm_2.sor"}));
    const auto cable = [this](const char* name) {
        return Reflectogram(stored(name)).state()->file->gen.cableId;
    };
    EXPECT_EQ(cable("link_1550nm.sor"), "first");
    EXPECT_EQ(cable("link_1550nm_2.sor"), "second");
    ASSERT_EQ(saved.size(), 2);
    EXPECT_EQ(saved.at(1).first().toString(), stored("link_1550nm_2"));
    EXPECT_TRUE(notified.at(1).first().toString().contains("otdr/link_1550nm_2.html"));
}

TEST_F(Keeping, TracesOfAGroupAreSavedOneAfterTheOther)
{
    makeReport("d=\"${4%/*}\"; mkdir \"$d/busy\" || exit 3; sleep 0.2; rmdir \"$d/busy\";"
               "echo > \"$4\"");
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    refls.addReflFromFile(files.write("b.sor", SorSketch::plain()));
    refls.associate(refls.refls()[1], refls.refls()[0]);
    EXPECT_EQ(keeper.doSave("link"), 0);
    EXPECT_EQ(saved.size(), 2);
    ASSERT_EQ(waits.size(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(waits.at(i).first().toBool(), i % 2 == 0) << i;
    }
}

TEST_F(Keeping, TellsOfTheCopyOnTheFlashDrive)
{
    ZuLauncherConfig("flash", "dir").store(files.path("stick"));
    ZuLauncherConfig("flash", "save").store(true);
    QDir().mkpath(files.path("stick/otdr"));
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    EXPECT_EQ(keeper.doSave("link"), 0);
    for (const char* name : {"link.sor", "link.html", "link.png"}) {
        EXPECT_TRUE(QFile::exists(files.path("stick/otdr/") + name)) << name;
    }
    EXPECT_EQ(notified.first().first().toString(),
              "Reports was saved to:\notdr/link.sor\notdr/link.html\n"
              "\nReports automatically copied to USB-flash:\n"
                  + files.path("stick/otdr"));
}

TEST_F(Keeping, FailedSaveSaysSoAndKeepsTheIndex)
{
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    files.write("home", Bytes(1));
    EXPECT_NE(keeper.doSave("link"), 0);
    ASSERT_EQ(notified.size(), 1);
    EXPECT_EQ(notified.first().first().toString(), "Failed to save reports!");
    EXPECT_EQ(saved.size(), 0);
}

TEST_F(Keeping, EachSavedTraceAdvancesTheRunningIndex)
{
    addMeasured();
    EXPECT_EQ(keeper.doSave(keeper.reportAutoName()), 0);
    EXPECT_EQ(keeper.reportAutoName(), "trace_1550_0002");
    config->setting("reflIndex", "AdvancedParams")->tryChange(9999);
    EXPECT_EQ(keeper.doSave(keeper.reportAutoName()), 0);
    EXPECT_EQ(keeper.reportAutoName(), "trace_1550_0001");
}

TEST_F(Keeping, FailedReportIsAFailedSaveAndTheTraceStays)
{
    makeReport("exit 3");
    addMeasured();
    const QString name = keeper.reportAutoName();
    EXPECT_NE(keeper.doSave(name), 0);
    ASSERT_EQ(notified.size(), 1);
    EXPECT_EQ(notified.first().first().toString(), "Failed to save reports!");
    EXPECT_EQ(saved.size(), 0);
    EXPECT_EQ(keeper.reportAutoName(), name) << "the index stands";
    EXPECT_TRUE(Reflectogram(stored(name + ".sor")).isValid());
    EXPECT_FALSE(waits.last().first().toBool());
}

TEST_F(Keeping, OneFailedReportOfAGroupDoesNotKeepTheOthersFromBeingSaved)
{
    makeReport(R"(case "$4" in *_1550nm.html) exit 3;; esac; echo > "$4")");
    SorSketch other = SorSketch::plain();
    other.gen.wavelength_nm = 1310;
    other.fxd.actualWavelength = 13100;
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    refls.addReflFromFile(files.write("b.sor", other));
    refls.associate(refls.refls()[1], refls.refls()[0]);
    EXPECT_NE(keeper.doSave("link"), 0);
    EXPECT_TRUE(QFile::exists(stored("link_1550nm.sor")));
    ASSERT_EQ(saved.size(), 1);
    EXPECT_EQ(saved.first().first().toString(), stored("link_1310nm"));
    EXPECT_EQ(notified.size(), 2);
}

TEST_F(Keeping, WithoutATraceNothingIsSaved)
{
    EXPECT_NE(keeper.doSave("link"), 0);
    EXPECT_EQ(saved.size(), 0);
    EXPECT_EQ(notified.last().first().toString(), "Failed to save reports!");
    EXPECT_TRUE(QDir(stored("")).isEmpty());
}

TEST_F(Keeping, FilesThatGoTogetherDifferInTheirExtension)
{
    EXPECT_EQ(Keeper::auxFileName("/a/b/north.2.sor", "html"), "/a/b/north.2.html");
    EXPECT_EQ(Keeper::auxFileName("/a/b/north.sor", "png"), "/a/b/north.png");
}

TEST_F(Keeping, TemplateIsThatOfTheLanguageIfItIsThere)
{
    EXPECT_EQ(Keeper::reportTemplate("ru_RU"), "");
    const QString plain = files.write("plain.html", Bytes(1));
    ZuConfig("zuotdr", "report", "template").store(plain);
    ZuConfig("zuotdr", "report", "ru_template").store(files.path("ru.html"));
    EXPECT_EQ(Keeper::reportTemplate("ru_RU"), plain) << "that file does not exist";
    const QString russian = files.write("ru.html", Bytes(1));
    EXPECT_EQ(Keeper::reportTemplate("ru_RU"), russian);
    EXPECT_EQ(Keeper::reportTemplate("de_DE"), plain);
    EXPECT_EQ(Keeper::reportTemplate("C"), plain) << "it has no language";
    EXPECT_EQ(Keeper::reportTemplate(""), plain);
}

TEST_F(Keeping, TemplateIsHandedToTheGenerator)
{
    makeReport(R"(echo "$5 $6" > "$4")");
    const QString own = files.write("own.html", Bytes(1));
    ZuConfig("zuotdr", "report", "template").store(own);
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    EXPECT_EQ(keeper.doSave("link"), 0);
    QFile report(stored("link.html"));
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(report.readAll()), "-t " + own + "\n");
}

TEST_F(Keeping, HangingReportKeepsTheScreenAliveAndIsGivenUpAfterAQuit)
{
    makeReport("echo > \"$4\"; exec sleep 60");
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    int turns = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (++turns == 20) {
            keeper.quitWanted();
        }
    });
    timer.start(10);
    EXPECT_NE(keeper.doSave("link"), 0);
    EXPECT_GT(turns, 20) << "it had no time left to finish";
    EXPECT_TRUE(Reflectogram(stored("link.sor")).isValid()) << "the trace was lost";
    EXPECT_EQ(notified.last().first().toString(), "Failed to save reports!");
    EXPECT_FALSE(waits.last().first().toBool());
}

TEST_F(Keeping, QuitLeavesAReportTheTimeThatItNeeds)
{
    makeReport("sleep 1; echo > \"$4\"");
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    QTimer::singleShot(0, &keeper, [this] { keeper.quitWanted(); });
    EXPECT_EQ(keeper.doSave("link"), 0);
    EXPECT_TRUE(QFile::exists(stored("link.html")));
}

TEST_F(Keeping, KeeperMayGoDuringASave)
{
    makeReport("exec sleep 60");
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    auto* passing = new Keeper(&card, &refls);
    QTimer::singleShot(50, passing, [passing] { delete passing; });
    EXPECT_NE(passing->doSave("link"), 0);
    EXPECT_TRUE(Reflectogram(stored("link.sor")).isValid());
}

TEST_F(Keeping, EventLoopTurnsDuringASave)
{
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    bool turned = false;
    QTimer::singleShot(0, [&turned] { turned = true; });
    EXPECT_EQ(keeper.doSave("link"), 0);
    EXPECT_TRUE(turned);
}

} // namespace
