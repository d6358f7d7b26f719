// The whole application as a process: opens, shows, measures, leaves.

#include "platform/otdr/core/trace.h"
#include "platform/otdr/reflectogram.h"
#include "tests/app/application.h"

#include <QImage>

#include <gmock/gmock.h>

namespace {

using namespace testing_support; // builders

TEST_F(Application, TakesAScreenshotOfATraceInTheSizeAskedFor)
{
    const QString picture = dir.filePath("picture.png");
    for (const QString& size : {QString("800x480"), QString("1280x800")}) {
        const Outcome outcome = run(
            {"--screenshot", picture, "--size", size, files.write("a.sor", SorSketch::plain())});
        EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.err);
        EXPECT_EQ(outcome.err, "");
        const QImage image(picture);
        EXPECT_EQ(QString("%1x%2").arg(image.width()).arg(image.height()), size);
    }
}

TEST_F(Application, ScreenshotShowsTheTrace)
{
    const QString with = dir.filePath("with.png");
    ASSERT_EQ(run({"--screenshot", with, files.write("a.sor", SorSketch::plain())}).code, 0);
    const QImage image(with);
    int blue = 0;
    for (int x = 0; x < image.width(); ++x) {
        blue += image.pixelColor(x, image.height() / 2) == QColor(Qt::darkBlue) ? 1 : 0;
    }
    // Level 45 dB of 50 on most of the width.
    EXPECT_GT(blue, image.width() / 2);
}

TEST_F(Application, FileThatIsNoTraceIsOneClearLine)
{
    const QString picture = dir.filePath("picture.png");
    const Outcome outcome = run({"--screenshot", picture, dir.filePath("missing.sor")});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.err.count('\n'), 1) << qPrintable(outcome.err);
    EXPECT_EQ(outcome.err.count("missing.sor"), 1) << qPrintable(outcome.err);
    EXPECT_FALSE(QFile::exists(picture));
}

TEST_F(Application, DemoMeasuresSavesAndLeavesAPicture)
{
    const QString demo = dir.filePath("demo");
    const Outcome outcome = run({"--demo", demo, "--time-scale", "0", "--seed", "1"});
    ASSERT_EQ(outcome.code, 0) << qPrintable(outcome.err);
    EXPECT_EQ(outcome.err, "");
    const Reflectogram refl(demo + "/demo.sor");
    ASSERT_TRUE(refl.isValid()) << qPrintable(refl.error());
    EXPECT_EQ(refl.wavelength(), 1310);
    EXPECT_EQ(refl.pulseWidth(), 100.0);
    EXPECT_GT(refl.trace()->size(), 1000U);
    EXPECT_EQ(QImage(demo + "/window.png").size(), QSize(1280, 800));
    EXPECT_EQ(QImage(demo + "/demo.png").size(), QSize(1280, 640));
    QFile report(demo + "/demo.html");
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    EXPECT_TRUE(report.readAll().contains("demo.sor"));
    EXPECT_FALSE(QFile::exists(dir.filePath("otdr"))) << "the user's own directory was used";
}

TEST_F(Application, SameSeedMeasuresTheSameTrace)
{
    const auto samples = [this](const QString& name, const QString& seed) {
        const QString demo = dir.filePath(name);
        EXPECT_EQ(run({"--demo", demo, "--time-scale", "0", "--seed", seed}).code, 0);
        return Reflectogram(demo + "/demo.sor").trace()->samples();
    };
    const auto first = samples("one", "5");
    EXPECT_EQ(samples("two", "5"), first);
    EXPECT_NE(samples("two", "6"), first) << "what an earlier demo left was not replaced";
}

TEST_F(Application, DemoOfBothWavelengthsSavesBoth)
{
    const QString demo = dir.filePath("demo");
    ASSERT_EQ(run({"--demo", demo, "--time-scale", "0", "--wavelength", "all"}).code, 0);
    EXPECT_EQ(Reflectogram(demo + "/demo_1310nm.sor").wavelength(), 1310);
    EXPECT_EQ(Reflectogram(demo + "/demo_1550nm.sor").wavelength(), 1550);
    EXPECT_TRUE(QFile::exists(demo + "/demo_1310nm.html"));
    EXPECT_TRUE(QFile::exists(demo + "/demo_1550nm.png"));
}

TEST_F(Application, DemoWithoutTheAcquisitionProgramFailsWithWords)
{
    const Outcome outcome = run({"--demo", dir.filePath("demo")}, dir.filePath("nowhere"));
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(outcome.err.contains("waveform: ")) << qPrintable(outcome.err);
}

TEST_F(Application, DemoTellsWhyTheAcquisitionProgramFailed)
{
    const QString junk = files.write("junk.sor", Bytes(100));
    const Outcome outcome = run({"--demo", dir.filePath("demo"), "--replay", junk});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(outcome.err.contains("junk.sor")) << qPrintable(outcome.err);
}

TEST_F(Application, WrongCommandLineIsCodeTwo)
{
    EXPECT_EQ(run({"--nonsense"}).code, 2);
    EXPECT_EQ(run({"--help"}).code, 0);
    EXPECT_TRUE(run({"--version"}).out.startsWith("waveform "));
}

} // namespace
