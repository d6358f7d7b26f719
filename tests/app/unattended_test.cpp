// What the application tells and shows where nobody is at the screen.

#include "tests/app/application.h"

#include <QImage>

namespace {

using namespace testing_support; // the fixture and builders

class Unattended : public Application
{
protected:
    QImage pictureWith(const QString& panels)
    {
        const QString picture = dir.filePath("picture.png");
        QStringList arguments = {"--screenshot", picture, "--size", "800x480",
                                 files.write("a.sor", SorSketch::plain())};
        if (!panels.isEmpty()) {
            arguments << "--show" << panels;
        }
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.err);
        EXPECT_EQ(outcome.err, "");
        return QImage(picture);
    }

    /// Rows of the picture in which the trace's colour is; the plot leaves them to a panel.
    static int traceRows(const QImage& image)
    {
        int rows = 0;
        for (int y = 0; y < image.height(); ++y) {
            rows += image.pixelColor(image.width() / 4, y) == QColor(Qt::darkBlue) ? 1 : 0;
        }
        return rows;
    }
};

TEST_F(Unattended, PanelsAreShownByTheirNames)
{
    const QImage plain = pictureWith({});
    const int most = traceRows(plain);
    ASSERT_GT(most, 150);
    EXPECT_LT(traceRows(pictureWith("events")), most - 60);
    EXPECT_LT(traceRows(pictureWith("reflectograms")), most - 40);
    EXPECT_LT(traceRows(pictureWith("events,reflectograms")),
              traceRows(pictureWith("events")) - 20);
    EXPECT_NE(pictureWith("measurement"), plain);
    EXPECT_EQ(pictureWith("events,reflectograms,measurement").size(), QSize(800, 480));
    EXPECT_EQ(pictureWith({}), plain) << "what was shown is remembered";
}

TEST_F(Unattended, PassesOnWarningsButNotWhatHelpsToFollowTheProgram)
{
    const QStringList arguments = {"--screenshot", dir.filePath("picture.png"),
                                   files.write("a.sor", SorSketch::plain())};
    const QMap<QString, QString> programs {{"WAVEFORM_PROGRAMS", WAVEFORM_BIN}};
    QMap<QString, QString> talkative = programs;
    talkative["QT_LOGGING_RULES"] = "*.debug=true";
    const Outcome quiet = start(program(), arguments, talkative);
    EXPECT_EQ(quiet.code, 0);
    EXPECT_EQ(quiet.err, "");
    QMap<QString, QString> odd = programs;
    odd["QT_STYLE_OVERRIDE"] = "nosuch";
    EXPECT_THAT(start(program(), arguments, odd).err.toStdString(), testing::HasSubstr("nosuch"));
}

TEST_F(Unattended, FifthFileIsRefusedInTheWordsOfTheWindow)
{
    QStringList arguments = {"--screenshot", dir.filePath("picture.png")};
    for (int i = 0; i < 6; ++i) {
        arguments << files.write(QString("trace%1.sor").arg(i), SorSketch::plain());
    }
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err,
              "waveform: Only 4 reflectograms can be loaded at the same time. Please, remove one "
              "or more from the \"Reflectograms\" table\n");
    EXPECT_TRUE(QFile::exists(dir.filePath("picture.png")));
}

TEST_F(Unattended, DemoPrintsTheEventsOfEachTraceItSaved)
{
    const Outcome one = run({"--demo", dir.filePath("one"), "--time-scale", "0"});
    ASSERT_EQ(one.code, 0) << qPrintable(one.err);
    EXPECT_TRUE(one.out.contains("\ndemo.sor: 1310 nm, 100 ns, 15 s")) << qPrintable(one.out);
    EXPECT_EQ(one.out.count("Location m"), 1);
    const Outcome both =
        run({"--demo", dir.filePath("two"), "--time-scale", "0", "--wavelength", "all"});
    EXPECT_TRUE(both.out.contains("demo_1310nm.sor: 1310 nm"));
    EXPECT_TRUE(both.out.contains("demo_1550nm.sor: 1550 nm"));
    EXPECT_EQ(both.out.count("Location m"), 2);
}

TEST_F(Unattended, DemoWithFilesIsWrongUse)
{
    const Outcome outcome =
        run({"--demo", dir.filePath("demo"), files.write("a.sor", SorSketch::plain())});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.err.count('\n'), 1) << qPrintable(outcome.err);
    EXPECT_FALSE(QFile::exists(dir.filePath("demo")));
}

} // namespace
