// How ticks and the band of a section look, and when they are made anew.

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

#include <memory>
#include <utility>

namespace {

using testing_support::eventAt;
using testing_support::TicksOnPlot;

/// A selection that tells how many follow its current row.
class CountingSelection : public QItemSelectionModel
{
    Q_OBJECT

public:
    using QItemSelectionModel::QItemSelectionModel;

    [[nodiscard]] int followers() const
    {
        return receivers(SIGNAL(currentRowChanged(QModelIndex, QModelIndex)));
    }
};

EventList startSectionEnd(long end)
{
    return {eventAt(Event::SpanStart, 0), eventAt(Event::Fiber, 0), eventAt(Event::SpanEnd, end)};
}

class TickAndBand : public TicksOnPlot
{
protected:
    QList<QPointF> ticks() const
    {
        QList<QPointF> found;
        for (const QwtPlotItem* item : plot.itemList(QwtPlotItem::Rtti_PlotMarker)) {
            found << dynamic_cast<const QwtPlotMarker*>(item)->value();
        }
        return found;
    }
};

TEST_F(TickAndBand, TickIsAThinRedLineOfItsHeight)
{
    for (const bool active : {false, true}) {
        const std::unique_ptr<QwtSymbol> symbol(view->symbol(active));
        EXPECT_EQ(symbol->style(), QwtSymbol::VLine);
        EXPECT_EQ(symbol->size(), QSize(1, active ? 1000 : 100));
        EXPECT_EQ(symbol->pen().color(), QColor(Qt::red));
        EXPECT_EQ(symbol->pen().style(), Qt::SolidLine);
        EXPECT_EQ(symbol->pen().widthF(), 1.0);
        EXPECT_EQ(symbol->brush().color().alpha(), 0);
    }
}

TEST_F(TickAndBand, BandIsDrawnAsTheTraceIs)
{
    show(startSectionEnd(3000));
    view->setActiveMarker(1);
    ASSERT_NE(band(), nullptr);
    EXPECT_EQ(band()->style(), QwtPlotCurve::Sticks);
    EXPECT_TRUE(band()->testRenderHint(QwtPlotItem::RenderAntialiased));
    EXPECT_EQ(band()->curveFitter(), nullptr);
    EXPECT_TRUE(band()->title().isEmpty());
    EXPECT_EQ(band()->pen().style(), curve.pen().style());
}

TEST_F(TickAndBand, BandIsMadeAnewOfTheNewSamples)
{
    show(startSectionEnd(3000));
    view->setActiveMarker(1);
    const auto before = band()->dataSize();
    curve.scale({0.0, 5000.0, 60});
    ASSERT_NE(band(), nullptr);
    EXPECT_LT(band()->dataSize(), before);
    ASSERT_EQ(ticks().size(), 2);
    EXPECT_EQ(band()->sample(0), ticks()[0]);
    EXPECT_EQ(band()->sample(static_cast<int>(band()->dataSize()) - 1), ticks()[1]);
}

TEST_F(TickAndBand, BandComesBackWithATraceThatWasOutOfSight)
{
    show(startSectionEnd(3000));
    view->setActiveMarker(1);
    curve.scale({1e6, 2e6, 100});
    EXPECT_EQ(band(), nullptr);
    EXPECT_TRUE(ticks().isEmpty());
    curve.scale({0.0, 5000.0, 100});
    EXPECT_NE(band(), nullptr);
    EXPECT_EQ(ticks().size(), 2);
}

TEST_F(TickAndBand, BandNeedsBothItsEventsInTheList)
{
    show(startSectionEnd(3000));
    const std::pair<int, int> pairs[] = {{-1, 2}, {0, -1}, {3, 0}, {0, 3}, {2, 2}};
    for (const auto& [from, to] : pairs) {
        view->setActiveFiber(from, to);
        EXPECT_EQ(band(), nullptr) << from << ' ' << to;
    }
    view->setActiveFiber(0, 2);
    EXPECT_NE(band(), nullptr);
    view->setActiveFiber(-1, -1);
    EXPECT_EQ(band(), nullptr);
}

TEST_F(TickAndBand, OfSamplesAtOnePlaceTheFirstHasTheTick)
{
    const double step = refl.smpl2dist(1.0);
    curve.setSamples(QPolygonF() << QPointF(0.0, 1.0) << QPointF(10.0 * step, 5.0)
                                 << QPointF(10.0 * step, 7.0) << QPointF(20.0 * step, 3.0));
    show({eventAt(Event::NonReflective, 15), eventAt(Event::NonReflective, 10)});
    EXPECT_EQ(ticks(), QList<QPointF>({QPointF(10.0 * step, 5.0), QPointF(10.0 * step, 5.0)}));
}

TEST_F(TickAndBand, AnotherCurveHasItsOwnEventsAndIsFollowed)
{
    show(startSectionEnd(3000));
    Reflectogram other = files.plain("other.sor");
    other.setEventList({eventAt(Event::NonReflective, 500)});
    ReflCurve second({0.0, 5000.0, 10000}, other, Qt::darkGreen);
    view->setCurve(&second);
    ASSERT_EQ(ticks().size(), 1);
    EXPECT_DOUBLE_EQ(ticks()[0].x(), second.sample(500).x());
    other.setEventList(startSectionEnd(700));
    curve.scale({0.0, 5000.0, 100});
    EXPECT_EQ(ticks().size(), 1) << "the first curve is not followed any more";
    second.scale({0.0, 5000.0, 100});
    EXPECT_EQ(ticks().size(), 2);
    view->setCurve(nullptr);
}

TEST_F(TickAndBand, InvalidTraceHasNoTicksAndNoBand)
{
    show(startSectionEnd(3000));
    view->setActiveMarker(1);
    ASSERT_NE(band(), nullptr);
    curve.setReflectogram({0.0, 5000.0, 100}, Reflectogram());
    EXPECT_TRUE(ticks().isEmpty());
    EXPECT_EQ(band(), nullptr);
    view->setMarkers(startSectionEnd(3000));
    EXPECT_TRUE(ticks().isEmpty());
}

TEST_F(TickAndBand, ShowingAndHidingLeavesThePaintingToOthers)
{
    plot.resize(400, 300);
    plot.show();
    show(startSectionEnd(3000));
    testing_support::PaintCounter item;
    item.attach(&plot);
    plot.replot();
    QCoreApplication::processEvents();
    item.count = 0;
    view->setVisible(true);
    view->setVisible(false);
    QCoreApplication::processEvents();
    EXPECT_EQ(item.count, 0);
    item.detach();
}

TEST_F(TickAndBand, NoCurrentRowIsNoCurrentEvent)
{
    show(startSectionEnd(3000));
    QStandardItemModel table(3, 1);
    view->changeCurrentEvent(table.index(1, 0));
    EXPECT_NE(band(), nullptr);
    view->changeCurrentEvent(QModelIndex());
    EXPECT_EQ(band(), nullptr);
    view->placeMarkers();
    EXPECT_EQ(band(), nullptr) << "nor when the ticks are made anew";
}

TEST_F(TickAndBand, SelectionGivenTwiceIsFollowedOnce)
{
    QStandardItemModel table(3, 1);
    CountingSelection selection(&table);
    const int before = selection.followers();
    view->setSelectionModel(&selection);
    view->setSelectionModel(&selection);
    EXPECT_EQ(selection.followers(), before + 1);
    view->setSelectionModel(nullptr);
    EXPECT_EQ(selection.followers(), before);
}

TEST_F(TickAndBand, SelectionMayGoFirst)
{
    show(startSectionEnd(3000));
    QStandardItemModel table(3, 1);
    QItemSelectionModel next(&table);
    {
        QItemSelectionModel first(&table);
        view->setSelectionModel(&first);
    }
    view->setSelectionModel(&next);
    next.setCurrentIndex(table.index(1, 0), QItemSelectionModel::Current);
    EXPECT_NE(band(), nullptr);
}

TEST_F(TickAndBand, PlotThatGoesTakesThemAlongAndTheNextOneHasThemAnew)
{
    refl.setEventList(startSectionEnd(3000));
    curve.detach();
    {
        Waveform::Plot first;
        view->attach(&first);
        view->setCurve(&curve);
        view->setActiveMarker(1);
    }
    view->setVisible(true);
    view->setActiveMarker(0);
    view->placeMarkers();
    view->attach(&plot);
    curve.attach(&plot);
    view->placeMarkers();
    view->setActiveMarker(1);
    EXPECT_EQ(ticks().size(), 2);
    EXPECT_NE(band(), nullptr);
}

} // namespace

#include "tickandband_test.moc"
