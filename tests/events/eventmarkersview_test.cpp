#include "events/eventmarkersview.h"
#include "plot/plot.h"
#include "plot/reflcurve.h"
#include "tests/events/eventat.h"
#include "tests/events/ticksonplot.h"
#include "tests/support/paintcounter.h"
#include "tests/support/tracefiles.h"

#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_symbol.h>

#include <QItemSelectionModel>
#include <QStandardItemModel>
#include <QtTest>

#include <gmock/gmock.h>

#include <functional>
#include <memory>

namespace {

using testing_support::eventAt;
using testing_support::TicksOnPlot;
using testing_support::TraceFiles;

class EventTicks : public TicksOnPlot
{
protected:
    EventTicks()
        : table(5, 1)
        , selection(&table)
    {
        view->setSelectionModel(&selection);
    }

    ~EventTicks() override { view.reset(); } // before what it follows

    QList<const QwtPlotMarker*> ticks() const
    {
        QList<const QwtPlotMarker*> found;
        for (const QwtPlotItem* item : plot.itemList(QwtPlotItem::Rtti_PlotMarker)) {
            found << dynamic_cast<const QwtPlotMarker*>(item);
        }
        return found;
    }

    QList<int> heights() const
    {
        QList<int> found;
        for (const QwtPlotMarker* tick : ticks()) {
            found << tick->symbol()->size().height();
        }
        return found;
    }

    void choose(int row)
    {
        selection.setCurrentIndex(table.index(row, 0), QItemSelectionModel::Select);
    }

    QStandardItemModel table;
    QItemSelectionModel selection;
};

TEST_F(EventTicks, StandOnTheLineAtTheirEvents)
{
    show({eventAt(Event::SpanStart, 0), eventAt(Event::NonReflective, 1000),
          eventAt(Event::SpanEnd, 3000)});
    ASSERT_EQ(ticks().size(), 3);
    for (const QwtPlotMarker* tick : ticks()) {
        EXPECT_NEAR(tick->yValue(), refl.powerAtDist(tick->xValue()), 1e-4);
        EXPECT_EQ(tick->z(), 1000.0);
        EXPECT_EQ(tick->symbol()->style(), QwtSymbol::VLine);
        EXPECT_EQ(tick->symbol()->pen().color(), QColor(Qt::red));
        EXPECT_EQ(tick->symbol()->size(), QSize(1, 100));
    }
    EXPECT_NEAR(ticks()[1]->xValue(), refl.smpl2dist(1000.0), 1e-6);
}

TEST_F(EventTicks, EventBetweenDrawnSamplesStandsOnTheOneBefore)
{
    curve.scale({0.0, 5000.0, 40}, false);
    show({eventAt(Event::NonReflective, 1234)});
    const double distance = refl.smpl2dist(1234.0);
    ASSERT_EQ(ticks().size(), 1);
    const double x = ticks()[0]->xValue();
    EXPECT_LE(x, distance);
    // No drawn sample lies between the tick and the event.
    for (std::size_t i = 0; i < curve.dataSize(); ++i) {
        const double other = curve.sample(static_cast<int>(i)).x();
        EXPECT_FALSE(other > x && other < distance - 0.01);
    }
}

TEST_F(EventTicks, EventOnADrawnSampleStandsThereWithinACentimetre)
{
    show({eventAt(Event::NonReflective, 500)});
    EXPECT_DOUBLE_EQ(ticks()[0]->xValue(), curve.sample(500).x());
    const double step = refl.smpl2dist(1.0);
    curve.scale({499.9 * step, 600.0 * step, 1000}, false);
    view->placeMarkers();
    EXPECT_DOUBLE_EQ(ticks()[0]->xValue(), curve.sample(0).x());
}

TEST_F(EventTicks, EventAHairBeforeADrawnSampleStandsOnItFromACentimetreOn)
{
    show({eventAt(Event::NonReflective, 500)});
    const double x = curve.sample(500).x();
    const double ior = refl.IOR();
    refl.setIOR(ior * x / (x - 0.009)); // the curve is drawn as it was
    view->placeMarkers();
    EXPECT_DOUBLE_EQ(ticks()[0]->xValue(), x);
    refl.setIOR(ior * x / (x - 0.011));
    view->placeMarkers();
    EXPECT_DOUBLE_EQ(ticks()[0]->xValue(), curve.sample(499).x());
}

TEST_F(EventTicks, EventBeyondTheLastDrawnSampleStandsOnThat)
{
    show({eventAt(Event::SpanEnd, 999999)});
    EXPECT_DOUBLE_EQ(ticks()[0]->xValue(), refl.maxdist());
}

TEST_F(EventTicks, EventBeforeTheFirstDrawnSampleStandsOnThat)
{
    curve.scale({1000.0, 2000.0, 10000}, false);
    show({eventAt(Event::SpanStart, 0)});
    EXPECT_DOUBLE_EQ(ticks()[0]->xValue(), curve.sample(0).x());
}

TEST_F(EventTicks, FibreSectionsHaveNone)
{
    show({eventAt(Event::SpanStart, 0), eventAt(Event::Fiber, 0), eventAt(Event::SpanEnd, 3000)});
    EXPECT_EQ(ticks().size(), 2);
}

TEST_F(EventTicks, ListThatTheTraceIsAboutToGetHasItsTicks)
{
    show({eventAt(Event::SpanStart, 0)});
    QMetaObject::invokeMethod(
        view.get(), "setMarkers",
        Q_ARG(EventList,
              EventList({eventAt(Event::SpanStart, 0), eventAt(Event::Fiber, 0),
                         eventAt(Event::NonReflective, 1000)})));
    ASSERT_EQ(ticks().size(), 2);
    EXPECT_NEAR(ticks()[1]->xValue(), refl.smpl2dist(1000.0), 1e-6);
    EXPECT_EQ(refl.getEventList().size(), 1) << "the trace gets its events from others";
    view->placeMarkers();
    EXPECT_EQ(ticks().size(), 1);
    view->setCurve(nullptr);
    view->setMarkers({eventAt(Event::SpanStart, 0)});
    EXPECT_TRUE(ticks().isEmpty());
}

TEST_F(EventTicks, AreHiddenUntilShown)
{
    show({eventAt(Event::SpanEnd, 3000)});
    EXPECT_FALSE(ticks()[0]->isVisible());
    view->setVisible(true);
    EXPECT_TRUE(ticks()[0]->isVisible());
    view->placeMarkers();
    EXPECT_TRUE(ticks()[0]->isVisible());
    view->setVisible(false);
    EXPECT_FALSE(ticks()[0]->isVisible());
}

TEST_F(EventTicks, CurrentEventCrossesTheCanvas)
{
    show({eventAt(Event::SpanStart, 0), eventAt(Event::NonReflective, 1000),
          eventAt(Event::SpanEnd, 3000)});
    choose(1);
    EXPECT_EQ(heights(), QList<int>({100, 1000, 100}));
    choose(2);
    EXPECT_EQ(heights(), QList<int>({100, 100, 1000}));
    view->clear();
    EXPECT_TRUE(ticks().isEmpty());
    view->placeMarkers();
    EXPECT_EQ(heights(), QList<int>({100, 100, 100})) << "none is current any more";
}

TEST_F(EventTicks, SelectionThatWasTakenAwayIsNotFollowed)
{
    show({eventAt(Event::SpanStart, 0), eventAt(Event::SpanEnd, 3000)});
    QItemSelectionModel other(&table);
    view->setSelectionModel(&other);
    choose(1);
    EXPECT_EQ(heights(), QList<int>({100, 100}));
    other.setCurrentIndex(table.index(1, 0), QItemSelectionModel::Select);
    EXPECT_EQ(heights(), QList<int>({100, 1000}));
    view->setSelectionModel(nullptr);
}

TEST_F(EventTicks, ChoiceAndPlacingOnDemandArePainted)
{
    plot.resize(400, 300);
    plot.show();
    testing_support::PaintCounter item;
    item.attach(&plot);
    show({eventAt(Event::SpanStart, 0), eventAt(Event::SpanEnd, 3000)});
    const auto isPainted = [&](const std::function<void()>& deed) {
        plot.replot();
        QCoreApplication::processEvents();
        item.count = 0;
        deed();
        QCoreApplication::processEvents();
        return item.count > 0;
    };
    EXPECT_TRUE(isPainted([this] { choose(1); }));
    EXPECT_TRUE(isPainted([this] { view->placeMarkers(true); }));
    EXPECT_FALSE(isPainted([this] { view->placeMarkers(false); }));
    EXPECT_FALSE(isPainted([this] { view->setActiveMarker(0); }));
    item.detach();
}

TEST_F(EventTicks, CurrentEventKeepsItsTallTickWhenTheCurveIsSampledAnew)
{
    show({eventAt(Event::SpanStart, 0), eventAt(Event::NonReflective, 1000)});
    choose(1);
    curve.scale({0.0, 2000.0, 50});
    EXPECT_EQ(heights(), QList<int>({100, 1000}));
    ASSERT_EQ(ticks().size(), 2);
    EXPECT_NEAR(ticks()[1]->yValue(), refl.powerAtDist(ticks()[1]->xValue()), 1e-4);
}

TEST_F(EventTicks, FibreSectionIsABandBetweenItsNeighbours)
{
    show({eventAt(Event::SpanStart, 0), eventAt(Event::Fiber, 0), eventAt(Event::SpanEnd, 3000)});
    EXPECT_EQ(band(), nullptr);
    choose(1);
    ASSERT_NE(band(), nullptr);
    EXPECT_EQ(band()->z(), 60.0);
    EXPECT_EQ(band()->pen().width(), 9);
    EXPECT_NEAR(band()->pen().color().alphaF(), 0.2, 0.01);
    EXPECT_EQ(band()->pen().color().blue(), QColor(Qt::darkBlue).blue());
    EXPECT_EQ(band()->sample(0), ticks()[0]->value());
    EXPECT_EQ(band()->sample(static_cast<int>(band()->dataSize()) - 1), ticks()[1]->value());
    EXPECT_EQ(heights(), QList<int>({100, 100}));
    choose(0);
    EXPECT_EQ(band(), nullptr);
}

TEST_F(EventTicks, FibreSectionAtAnEndOfTheListHasNoBand)
{
    show({eventAt(Event::Fiber, 0), eventAt(Event::NonReflective, 1000), eventAt(Event::Fiber, 0)});
    choose(0);
    EXPECT_EQ(band(), nullptr);
    choose(2);
    EXPECT_EQ(band(), nullptr);
}

TEST_F(EventTicks, BandFromAnEventToItselfIsNone)
{
    show({eventAt(Event::SpanStart, 0), eventAt(Event::SpanEnd, 3000)});
    view->setActiveFiber(1, 1);
    EXPECT_EQ(band(), nullptr);
    view->setActiveFiber(0, 1);
    EXPECT_NE(band(), nullptr);
}

TEST_F(EventTicks, RowBeyondTheListDoesNoHarm)
{
    show({eventAt(Event::SpanStart, 0)});
    choose(4);
    EXPECT_EQ(heights(), QList<int>({100}));
    show({});
    EXPECT_TRUE(ticks().isEmpty());
}

TEST_F(EventTicks, TraceWithoutDrawnSamplesHasNone)
{
    curve.scale({1e6, 2e6, 100}, false);
    show({eventAt(Event::SpanEnd, 3000)});
    EXPECT_TRUE(ticks().isEmpty());
}

TEST_F(EventTicks, AnotherCurveIsNotFollowedAnyMore)
{
    show({eventAt(Event::SpanEnd, 3000)});
    view->setCurve(nullptr);
    EXPECT_TRUE(ticks().isEmpty());
    curve.scale({0.0, 2000.0, 50});
    EXPECT_TRUE(ticks().isEmpty());
    EXPECT_FALSE(
        QObject::disconnect(&curve, SIGNAL(dataChanged()), view.get(), SLOT(placeMarkers())));
}

TEST(EventTicksOfADeadPlot, AreNotDeletedTwice)
{
    const TraceFiles files;
    Reflectogram refl = files.plain();
    refl.setEventList(
        {eventAt(Event::SpanStart, 0), eventAt(Event::Fiber, 0), eventAt(Event::SpanEnd, 3000)});
    ReflCurve curve({0.0, 5000.0, 1000}, refl, Qt::black);
    EventMarkersView view(nullptr);
    auto plot = std::make_unique<Waveform::Plot>();
    view.attach(plot.get());
    view.setCurve(&curve);
    view.setActiveMarker(1);
    plot.reset();
}

} // namespace
