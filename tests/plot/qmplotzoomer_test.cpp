#include "tests/plot/zoomertest.h"

#include <QPushButton>
#include <QtTest>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(Zoomer, LivesAsLongAsThePlot)
{
    EXPECT_EQ(zoomer->parent(), &plot);
}

TEST(NewZoomer, HasOneMetreByOneDecibelAsFullView)
{
    QwtPlot plot;
    QmPlotZoomer zoomer(&plot);
    EXPECT_TRUE(zoomer.zoomed());
    zoomer.zoomOff();
    EXPECT_EQ(zoomer.currentRect(), QRectF(0.0, 0.0, 1.0, 1.0));
    EXPECT_FALSE(zoomer.zoomed());

    ZoomerListener listener(&zoomer);
    zoomer.zoomIn(); // the smallest and the greatest span are both 1 m
    zoomer.zoomOut();
    zoomer.zoomIn(QwtPlot::xBottom);
    zoomer.zoomOut(QwtPlot::xBottom);
    zoomer.zoomOut(QwtPlot::yLeft); // no greatest span of levels yet
    EXPECT_THAT(listener.said, IsEmpty());
}

TEST(NewZoomer, GoesByStepsOfTwo)
{
    QwtPlot plot;
    QmPlotZoomer zoomer(&plot);
    zoomer.setMaxRect({0.0, 0.0, 1000.0, 50.0});
    zoomer.zoomOff();
    zoomer.zoomIn();
    EXPECT_EQ(zoomer.currentRect(), QRectF(250.0, 12.5, 500.0, 25.0));
    zoomer.zoomOut();
    EXPECT_EQ(zoomer.currentRect(), QRectF(0.0, 0.0, 1000.0, 50.0));
}

TEST_F(Zoomer, CurrentRectIsWhatTheAxesWereSetToLast)
{
    EXPECT_EQ(zoomer->currentRect(), QRectF(2000.0, 10.0, 1000.0, 20.0));
    view({0.0, 0.0, 10000.0, 50.0});
    EXPECT_TRUE(zoomer->zoomed()) << "known only once the axes are read again";
    EXPECT_EQ(zoomer->currentRect(), QRectF(0.0, 0.0, 10000.0, 50.0));
    EXPECT_FALSE(zoomer->zoomed());
    EXPECT_THAT(listener.said, IsEmpty());
}

TEST_F(Zoomer, ZoomsInAboutTheCentre)
{
    zoomer->zoomIn();
    expectShown({2250.0, 15.0, 500.0, 10.0});
    EXPECT_EQ(listener.bounds, QRectF(2250.0, 15.0, 500.0, 10.0));
    EXPECT_THAT(listener.said, ElementsAre("out", "in", "bounds"));
}

TEST_F(Zoomer, ZoomsOutAboutTheCentre)
{
    zoomer->zoomOut();
    expectShown({1500.0, 0.0, 2000.0, 40.0});
    EXPECT_EQ(listener.bounds, QRectF(1500.0, 0.0, 2000.0, 40.0));
    EXPECT_THAT(listener.said, ElementsAre("out", "in", "bounds"));
}

TEST_F(Zoomer, UsesTheFactorsItWasGiven)
{
    zoomer->setZoomInFactor(4.0);
    zoomer->setZoomOutFactor(5.0);
    zoomer->zoomIn();
    expectShown({2375.0, 17.5, 250.0, 5.0});
    zoomer->zoomOut();
    expectShown({1875.0, 7.5, 1250.0, 25.0});
    zoomer->zoomIn(10.0);
    expectShown({2437.5, 18.75, 125.0, 2.5});
    zoomer->zoomOut(2.0);
    expectShown({2375.0, 17.5, 250.0, 5.0});
}

TEST_F(Zoomer, IgnoresFactorsThatAreNotPositive)
{
    zoomer->setZoomInFactor(0.0);
    zoomer->setZoomInFactor(-3.0);
    zoomer->setZoomOutFactor(0.0);
    zoomer->setZoomOutFactor(-3.0);
    zoomer->zoomIn();
    expectShown({2250.0, 15.0, 500.0, 10.0});
    zoomer->zoomOut();
    expectShown({2000.0, 10.0, 1000.0, 20.0});

    listener.said.clear();
    zoomer->zoomIn(0.0);
    zoomer->zoomOut(-2.0);
    zoomer->zoomCentered(0.0);
    zoomer->zoomCentered(qQNaN());
    EXPECT_THAT(listener.said, IsEmpty());
    expectShown({2000.0, 10.0, 1000.0, 20.0});
}

TEST_F(Zoomer, IgnoresLimitsThatAreNotPositive)
{
    zoomer->setMinRange(100.0);
    zoomer->setMinYRange(4.0);
    for (const double range : {0.0, -1.0}) {
        zoomer->setMinRange(range);
        zoomer->setMinYRange(range);
        zoomer->setMaxRange(range);
        zoomer->setMaxYRange(range);
    }
    zoomer->zoomCentered(1e-6);
    expectShown({2450.0, 18.0, 100.0, 4.0});
    zoomer->setZoomOutFactor(1e6);
    zoomer->zoomOut(QwtPlot::xBottom);
    zoomer->zoomOut(QwtPlot::yLeft);
    expectShown({-2500.0, -5.0, 10000.0, 50.0});
}

TEST_F(Zoomer, TheSameLimitAgainChangesNothing)
{
    zoomer->setMinRange(100.0);
    zoomer->setMinRange(100.0);
    zoomer->zoomIn(1000.0);
    EXPECT_NEAR(shown().width(), 100.0, 1e-9);
    EXPECT_THAT(listener.said, ElementsAre("out", "no way in", "bounds"));
}

TEST_F(Zoomer, LandsOnTheNarrowestViewAndStaysThereSilently)
{
    view({51234.567, 10.0, 0.8, 20.0});
    zoomer->zoomIn();
    EXPECT_NEAR(shown().width(), 0.5, 1e-9);
    EXPECT_NEAR(shown().height(), 12.5, 1e-9) << "the levels follow the shortened step";
    EXPECT_THAT(listener.said, ElementsAre("out", "no way in", "bounds"));

    listener.said.clear();
    const QRectF before = shown();
    zoomer->zoomIn();
    zoomer->zoomIn(8.0);
    zoomer->zoomIn(QwtPlot::xBottom);
    EXPECT_THAT(listener.said, IsEmpty());
    EXPECT_EQ(shown(), before);
}

TEST_F(Zoomer, DoesNotZoomInBelowTheNarrowestView)
{
    view({2000.0, 10.0, 0.3, 20.0});
    zoomer->zoomIn();
    EXPECT_THAT(listener.said, IsEmpty());
    EXPECT_EQ(zoomer->currentRect(), QRectF(2000.0, 10.0, 2000.3 - 2000.0, 20.0));
}

TEST_F(Zoomer, LevelsStopAtTheirSmallestSpanWhileDistancesGoOn)
{
    view({2000.0, 10.0, 1000.0, 0.06});
    zoomer->zoomIn();
    expectShown({2250.0, 10.005, 500.0, 0.05});
}

TEST_F(Zoomer, ZoomingOutToTheFullViewSaysSo)
{
    view({2500.0, 12.5, 5000.0, 25.0});
    zoomer->zoomOut();
    expectShown({0.0, 0.0, 10000.0, 50.0});
    EXPECT_THAT(listener.said, ElementsAre("no way out", "full view", "in", "bounds"));

    listener.said.clear();
    zoomer->zoomOut();
    EXPECT_THAT(listener.said, IsEmpty());
}

TEST_F(Zoomer, ZoomingOutIsShortenedToTheGreatestSpan)
{
    view({1000.0, 10.0, 8000.0, 20.0});
    zoomer->zoomOut();
    expectShown({0.0, 7.5, 10000.0, 25.0});
}

TEST_F(Zoomer, TheViewMayReachPastTheFullOne)
{
    view({8000.0, 30.0, 6000.0, 30.0});
    zoomer->zoomOut();
    expectShown({6000.0, 20.0, 10000.0, 50.0});
    EXPECT_THAT(listener.said, ElementsAre("no way out", "full view", "in", "bounds"));
}

TEST_F(Zoomer, CentredZoomIsBoundedByTheFullViewAlone)
{
    zoomer->setMaxRange(1500.0);
    zoomer->zoomCentered(3.0);
    expectShown({1000.0, -5.0, 3000.0, 50.0});
}

TEST_F(Zoomer, MaxRangeStopsZoomingOutBeforeTheFullView)
{
    zoomer->setMaxRange(1500.0);
    zoomer->zoomOut();
    expectShown({1750.0, 5.0, 1500.0, 30.0});
}

TEST_F(Zoomer, ZoomToARectangleShowsIt)
{
    const QRectF rect(100.0, 3.0, 700.0, 30.0);
    zoomer->zoomTo(rect);
    EXPECT_EQ(shown(), rect);
    EXPECT_EQ(listener.bounds, rect);
    EXPECT_THAT(listener.said, ElementsAre("out", "in", "bounds"));
}

TEST_F(Zoomer, ZoomOffShowsTheFullView)
{
    zoomer->zoomOff();
    EXPECT_EQ(shown(), QRectF(0.0, 0.0, 10000.0, 50.0));
    EXPECT_THAT(listener.said, ElementsAre("no way out", "full view", "in", "bounds"));
    listener.said.clear();
    zoomer->zoomOff();
    EXPECT_EQ(listener.said.size(), 4U) << "said again even if nothing changed";
}

TEST_F(Zoomer, SetMaxRectIsSilentAndKeepsTheView)
{
    zoomer->setMaxRect({0.0, 0.0, 3000.0, 40.0});
    EXPECT_THAT(listener.said, IsEmpty());
    EXPECT_EQ(zoomer->currentRect(), QRectF(2000.0, 10.0, 1000.0, 20.0));
    zoomer->setZoomOutFactor(100.0);
    zoomer->zoomOut(QwtPlot::xBottom);
    zoomer->zoomOut(QwtPlot::yLeft);
    expectShown({1000.0, 0.0, 3000.0, 40.0});
}

TEST_F(Zoomer, TheSameMaxRectKeepsTheGreatestSpans)
{
    zoomer->setMaxRange(1200.0);
    zoomer->setMaxRect({0.0, 0.0, 10000.0, 50.0});
    zoomer->zoomOut(QwtPlot::xBottom);
    EXPECT_NEAR(shown().width(), 1200.0, 1e-9);
    zoomer->setMaxRect({0.0, 0.0, 9000.0, 50.0});
    zoomer->zoomOut(QwtPlot::xBottom);
    EXPECT_NEAR(shown().width(), 2400.0, 1e-9);
}

TEST_F(Zoomer, StandsAnEmptyFullView)
{
    zoomer->setMaxRect({0.0, 0.0, 0.0, 50.0});
    zoomer->zoomOff();
    EXPECT_THAT(listener.said, ElementsAre("no way out", "full view", "no way in", "bounds"));
    listener.said.clear();
    zoomer->zoomIn();
    zoomer->zoomOut();
    EXPECT_THAT(listener.said, IsEmpty());
}

TEST_F(Zoomer, TheViewCanBeReadFromThePlotBeforeTheFirstSignal)
{
    QRectF seen;
    QObject::connect(zoomer, &QmPlotZoomer::disableZoomOut, &plot, [&] { seen = shown(); });
    zoomer->zoomTo({100.0, 3.0, 700.0, 30.0});
    EXPECT_EQ(seen, QRectF(100.0, 3.0, 700.0, 30.0));
}

TEST_F(Zoomer, ButtonsReachItsSlotsBySignature)
{
    QPushButton in;
    QPushButton out;
    QPushButton off;
    EXPECT_TRUE(QObject::connect(&in, SIGNAL(clicked()), zoomer, SLOT(zoomIn())));
    EXPECT_TRUE(QObject::connect(&out, SIGNAL(clicked()), zoomer, SLOT(zoomOut())));
    EXPECT_TRUE(QObject::connect(&off, SIGNAL(clicked()), zoomer, SLOT(zoomOff())));
    EXPECT_TRUE(QObject::connect(zoomer, SIGNAL(disableZoomIn(bool)), &in, SLOT(setHidden(bool))));
    zoomer->setMinRange(100.0);
    in.show();
    for (int clicks = 0; clicks < 4; ++clicks) { // 1000 m, 500 m, 250 m, 125 m, 100 m
        EXPECT_TRUE(in.isVisible());
        QTest::mouseClick(&in, Qt::LeftButton);
    }
    EXPECT_FALSE(in.isVisible());
    QTest::mouseClick(&out, Qt::LeftButton);
    EXPECT_TRUE(in.isVisible());
    EXPECT_NEAR(shown().width(), 200.0, 1e-9);
    QTest::mouseClick(&off, Qt::LeftButton);
    EXPECT_EQ(shown(), QRectF(0.0, 0.0, 10000.0, 50.0));
}

} // namespace
