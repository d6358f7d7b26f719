// Traces that were stored: loaded, compared, measured between markers, taken away again.

#include "tests/endtoend/useratthescreen.h"

#include <QDir>

#include <algorithm>
#include <utility>

namespace {

using namespace testing_support; // the fixture and builders

class UserWhoCompares : public UserAtTheScreen
{
protected:
    /// So many files in the storage directory: "trace1.sor" and so on.
    void storeTraces(int count)
    {
        QDir().mkpath(homePath("otdr"));
        for (int i = 1; i <= count; ++i) {
            QFile::copy(files.write("plain.sor", SorSketch::plain()),
                        homePath(QString("otdr/trace%1.sor").arg(i)));
        }
    }

    SeenRow file(const QString& name)
    {
        const QList<SeenRow> rows = ofClass("QTreeView").rows();
        for (const SeenRow& row : rows) {
            if (row.texts.first() == name) {
                return row;
            }
        }
        return {};
    }

    void checkFile(const QString& name)
    {
        waitUntil([&] { return file(name).isEnabled; }, qPrintable(name));
        const QRect place = file(name).place;
        screen->tap({place.left() + 30, place.center().y()});
        waitUntil([&] { return file(name).isChecked; }, qPrintable(name + " is checked"));
    }

    /// The names in the table of traces.
    QStringList traces()
    {
        QStringList names;
        const QList<SeenRow> rows = named("reflectograms").rows();
        for (const SeenRow& row : rows) {
            names << row.texts.first();
        }
        return names;
    }

    void openMenuOf(const QString& trace)
    {
        QRect place;
        const QList<SeenRow> rows = named("reflectograms").rows();
        for (const SeenRow& row : rows) {
            place = row.texts.first() == trace ? row.place : place;
        }
        ASSERT_TRUE(place.isValid()) << qPrintable(trace);
        screen->press(place.center());
        waitUntil([this] { return ofClass("ReflTableMenu").isThere(); }, "the menu");
        screen->release();
    }

    std::pair<double, double> distances() { return plot().axis("distances"); }

    /// From left to right.
    QList<SeenWidget> markers()
    {
        QList<SeenWidget> found;
        const QList<SeenWidget> widgets = look();
        for (const SeenWidget& widget : widgets) {
            if (widget.isA("QmPlotMarker")) {
                found << widget;
            }
        }
        std::sort(found.begin(), found.end(), [](const SeenWidget& a, const SeenWidget& b) {
            return a.place().left() < b.place().left();
        });
        return found;
    }
};

TEST_F(UserWhoCompares, LoadsFourTracesAndNoFifth)
{
    storeTraces(5);
    ASSERT_NO_FATAL_FAILURE(start({}));
    ASSERT_NO_FATAL_FAILURE(tapButton("Reflectograms"));
    ASSERT_NO_FATAL_FAILURE(tapNamed("loadButton"));
    for (int i = 1; i <= 4; ++i) {
        ASSERT_NO_FATAL_FAILURE(checkFile(QString("trace%1.sor").arg(i)));
    }
    EXPECT_EQ(named("left").text(), "May still be loaded: 0");
    EXPECT_FALSE(file("trace5.sor").isEnabled);
    ASSERT_NO_FATAL_FAILURE(tapInDialog("Load"));
    const QStringList four = {"trace1", "trace2", "trace3", "trace4"};
    waitUntil([&] { return traces() == four; }, "the four traces");
    EXPECT_EQ(plot().curves(), 4);

    ASSERT_NO_FATAL_FAILURE(tapNamed("loadButton"));
    waitUntil([this] { return ofClass("WarningWindow").isThere(); }, "the fifth is refused");
    EXPECT_FALSE(ofClass("OpenDialog").isThere());
    ASSERT_NO_FATAL_FAILURE(tapOk());
    EXPECT_EQ(traces(), four);

    ASSERT_NO_FATAL_FAILURE(openMenuOf("trace2"));
    ASSERT_NO_FATAL_FAILURE(tapButton("Delete"));
    waitUntil(
        [this] {
            return traces() == QStringList({"trace1", "trace3", "trace4"});
        },
        "the second goes");
    EXPECT_EQ(plot().curves(), 3);
    ASSERT_NO_FATAL_FAILURE(openMenuOf("trace1"));
    ASSERT_NO_FATAL_FAILURE(tapButton("Delete all"));
    waitUntil([this] { return traces().isEmpty() && plot().curves() == 0; }, "all go");
    EXPECT_EQ(stored("*.sor").size(), 5) << "a file was deleted";
    ASSERT_NO_FATAL_FAILURE(quit());
}

TEST_F(UserWhoCompares, IsToldWhenFiveFilesAreGivenAtOnce)
{
    storeTraces(5);
    QStringList all;
    for (int i = 1; i <= 5; ++i) {
        all << homePath(QString("otdr/trace%1.sor").arg(i));
    }
    ASSERT_NO_FATAL_FAILURE(start(all));
    waitUntil([this] { return ofClass("WarningWindow").isThere(); }, "the fifth is refused");
    EXPECT_EQ(plot().curves(), 4);
    ASSERT_NO_FATAL_FAILURE(tapOk());
    ASSERT_NO_FATAL_FAILURE(quit());
}

TEST_F(UserWhoCompares, MakesAnotherTraceTheMainOne)
{
    storeTraces(2);
    ASSERT_NO_FATAL_FAILURE(start({homePath("otdr/trace1.sor"), homePath("otdr/trace2.sor")}));
    ASSERT_NO_FATAL_FAILURE(tapButton("Reflectograms"));
    waitUntil([this] { return traces().size() == 2; }, "both traces");
    const QRect first = named("reflectograms").rows().at(0).place;
    const QPoint besideTheName(first.left() + 4, first.center().y());
    const QRgb before = screen->picture().pixel(besideTheName);
    ASSERT_NO_FATAL_FAILURE(openMenuOf("trace1"));
    ASSERT_NO_FATAL_FAILURE(tapButton("Set as main"));
    waitUntil([&] { return screen->picture().pixel(besideTheName) != before; }, "the mark");
    ASSERT_NO_FATAL_FAILURE(quit());
}

TEST_F(UserWhoCompares, ZoomsInAndBackAndLooksAround)
{
    storeTraces(1);
    ASSERT_NO_FATAL_FAILURE(start({homePath("otdr/trace1.sor")}));
    waitUntil([this] { return plot().curves() == 1; }, "the trace");
    const std::pair<double, double> full = distances();
    const auto width = [this] { return distances().second - distances().first; };
    for (const double share : {0.5, 0.25}) {
        ASSERT_NO_FATAL_FAILURE(tapNamed("zoomInButton"));
        waitUntil([&] { return qAbs(width() - share * full.second) < 1.0; }, "half the width");
    }
    const std::pair<double, double> zoomed = distances();
    const QPoint middle = plot().place().center();
    screen->drag(middle, middle - QPoint(200, 0));
    waitUntil([&] { return distances().first > zoomed.first + 50.0; }, "the trace follows");
    EXPECT_NEAR(width(), 0.25 * full.second, 1.0);
    ASSERT_NO_FATAL_FAILURE(tapNamed("zoomOutButton"));
    waitUntil([&] { return width() > 0.4 * full.second; }, "twice the width");
    EXPECT_TRUE(named("zoomOutButton").isThere());
    ASSERT_NO_FATAL_FAILURE(tapNamed("zoomOffButton"));
    waitUntil([&] { return distances() == full; }, "the full view");
    waitUntil([this] { return !named("zoomOutButton").isThere(); }, "no wider one is offered");
    ASSERT_NO_FATAL_FAILURE(quit());
}

TEST_F(UserWhoCompares, MeasuresBetweenMarkersThatAreDragged)
{
    storeTraces(1);
    ASSERT_NO_FATAL_FAILURE(start({homePath("otdr/trace1.sor")}));
    ASSERT_NO_FATAL_FAILURE(tapButton("Measurement"));
    waitUntil([this] { return markers().size() == 2; }, "both markers");
    const QRect grip = markers().at(1).place();
    const QPoint from(grip.center().x(), grip.bottom() - 20);
    screen->drag(from, from + QPoint(300, 0));
    waitUntil([&] { return markers().at(1).place().left() == grip.left() + 300; }, "B follows");
    const auto metres = [this](const QString& caption) {
        return valueBeside(caption).section(' ', 0, 0).toDouble();
    };
    waitUntil([&] { return metres("Length: ") > 100.0; }, "the length is measured");
    EXPECT_NEAR(metres("Length: "), metres("B: ") - metres("A: "), 0.11);
    waitUntil([&] { return valueBeside("ORL: ").endsWith(" dB"); }, "and the return loss");
    EXPECT_TRUE(valueBeside("Attenuation: ").endsWith(" dB/km"));

    const double b_m = metres("B: ");
    screen->tap(from + QPoint(300, 0)); // chooses it for the keys
    screen->key("Page_Up");
    waitUntil([&] { return metres("B: ") > b_m; }, "B goes on by a pixel");

    ASSERT_NO_FATAL_FAILURE(tapNamed("zoomInButton"));
    waitUntil([&] { return distances().first > 0.0; }, "a part of the trace");
    ASSERT_NO_FATAL_FAILURE(tapButton("Markers to screen"));
    waitUntil([&] { return metres("A: ") > distances().first; }, "A comes along");
    EXPECT_LT(metres("B: "), distances().second);
    ASSERT_NO_FATAL_FAILURE(tapButton("Settings"));
    waitUntil([this] { return markers().isEmpty(); }, "the markers go with their bar");
    ASSERT_NO_FATAL_FAILURE(quit());
}

} // namespace
