// What lies over the canvas, where panels leave little height to it.

#include "events/eventstableview.h"
#include "plot/qmminiplot.h"
#include "plot/qmplotmarker.h"
#include "refls/reflstableview.h"
#include "tests/window/screen.h"
#include "twomarkers/twomarkersresultwidget.h"
#include "window/measview.h"

namespace {

using namespace testing_support; // fixture and builders

/// What the frame leaves of an 800 x 480 screen.
constexpr QSize kPage(800, 428);

class LowCanvas : public Screen
{
protected:
    LowCanvas()
    {
        window->resize(kPage);
        load("a.sor");
        QTest::mouseClick(button("zoomInButton"), Qt::LeftButton); // so that all three are there
    }

    void showPanels(std::initializer_list<QWidget*> panels)
    {
        for (QWidget* panel : panels) {
            panel->show();
        }
        settle();
    }

    QPushButton* button(const QString& name) const { return window->findChild<QPushButton*>(name); }

    QRect place(const QString& name) const { return button(name)->geometry(); }

    QWidget* events() const { return window->findChild<Waveform::EventsTableView*>(); }

    QWidget* traces() const { return window->findChild<Waveform::ReflsTableView*>(); }

    QWidget* bar() const { return window->findChild<MeasView*>(); }

    void expectButtonsApart() const
    {
        const QRect canvas = plot()->canvas()->rect();
        const QStringList names = {"zoomOffButton", "zoomInButton", "zoomOutButton"};
        for (int i = 0; i < names.size(); ++i) {
            EXPECT_TRUE(button(names[i])->isVisible()) << qPrintable(names[i]);
            EXPECT_TRUE(canvas.contains(place(names[i]))) << qPrintable(names[i]);
            EXPECT_GE(place(names[i]).height(), 52) << qPrintable(names[i]);
            for (int other = 0; other < i; ++other) {
                EXPECT_FALSE(place(names[i]).intersects(place(names[other])))
                    << qPrintable(names[i] + " covers " + names[other]);
            }
        }
    }
};

TEST_F(LowCanvas, ButtonsStandInAColumnWhereThereIsRoom)
{
    expectButtonsApart();
    EXPECT_EQ(place("zoomOffButton").x(), place("zoomInButton").x());
    EXPECT_EQ(place("zoomInButton").x(), place("zoomOutButton").x());
}

TEST_F(LowCanvas, ButtonsStayWholeAndApartBesideEachTable)
{
    showPanels({events()});
    expectButtonsApart();
    showPanels({traces()});
    expectButtonsApart();
    EXPECT_LT(place("zoomOffButton").right(), place("zoomInButton").left());
    events()->hide();
    traces()->hide();
    QCoreApplication::processEvents();
    expectButtonsApart();
    EXPECT_EQ(place("zoomOffButton").x(), place("zoomInButton").x()) << "no column again";
}

TEST_F(LowCanvas, ResultsOfAMeasurementAreWholeBesideOneTable)
{
    showPanels({bar(), events()});
    const auto* results = window->findChild<Waveform::TwoMarkersResultWidget*>();
    ASSERT_TRUE(results->isVisible());
    EXPECT_TRUE(plot()->canvas()->rect().contains(results->geometry()));
    EXPECT_GE(results->height(), results->minimumSizeHint().height());
    expectButtonsApart();
}

TEST_F(LowCanvas, ResultsOfAMeasurementAreWholeWithAllPanels)
{
    const auto* results = window->findChild<Waveform::TwoMarkersResultWidget*>();
    showPanels({bar()});
    const int usual = QFontInfo(results->font()).pixelSize();
    showPanels({events(), traces()});
    EXPECT_EQ(window->size(), kPage);
    ASSERT_TRUE(results->isVisible());
    const auto isWhole = [&] { return plot()->canvas()->rect().contains(results->geometry()); };
    EXPECT_TRUE(QTest::qWaitFor(isWhole, 2000));
    EXPECT_TRUE(plot()->canvas()->rect().contains(results->geometry()));
    EXPECT_GE(results->height(), results->minimumSizeHint().height());
    EXPECT_LT(QFontInfo(results->font()).pixelSize(), usual);
    expectButtonsApart();
    traces()->hide();
    events()->hide();
    QCoreApplication::processEvents();
    EXPECT_EQ(QFontInfo(results->font()).pixelSize(), usual) << "the letters stay small";
}

TEST_F(LowCanvas, MarkersAreTakenWhereTheyStandBehindTheResults)
{
    showPanels({bar(), events(), traces()});
    const auto* results = window->findChild<Waveform::TwoMarkersResultWidget*>();
    ASSERT_TRUE(results->isVisible());
    const QPoint middle = results->geometry().center();
    const QList<QmPlotMarker*> markers = plot()->canvas()->findChildren<QmPlotMarker*>();
    ASSERT_EQ(markers.size(), 2);
    for (QmPlotMarker* marker : markers) {
        marker->centerOn(middle.x());
        EXPECT_EQ(plot()->canvas()->childAt(middle), marker);
        marker->centerOn(0.0);
    }
    expectButtonsApart();
    markers.first()->centerOn(place("zoomInButton").center().x());
    EXPECT_EQ(plot()->canvas()->childAt(place("zoomInButton").center()), button("zoomInButton"))
        << "a marker covers a button";
}

TEST_F(LowCanvas, OverviewStandsApartFromResultsAndButtons)
{
    constexpr int kApart = 4;
    showPanels({bar()});
    const QRect overview = window->findChild<QmMiniPlot*>()->geometry();
    const auto* results = window->findChild<Waveform::TwoMarkersResultWidget*>();
    ASSERT_TRUE(results->isVisible());
    EXPECT_GE(overview.left() - results->geometry().right() - 1, kApart);
    EXPECT_GE(place("zoomOffButton").left() - overview.right() - 1, kApart);
    EXPECT_TRUE(plot()->canvas()->rect().contains(place("zoomOffButton")));
    EXPECT_EQ(overview.width(), 200);
}

TEST_F(LowCanvas, PlotKeepsMostOfThePageBesideOneTable)
{
    showPanels({events()});
    EXPECT_GT(plot()->height(), 2 * events()->height());
    EXPECT_EQ(window->size(), kPage) << "the page does not fit the instrument";
    showPanels({traces(), bar()});
    EXPECT_EQ(window->size(), kPage);
    EXPECT_GT(plot()->height(), events()->height() + traces()->height());
}

} // namespace
