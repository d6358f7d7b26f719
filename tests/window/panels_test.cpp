// What the window shows below the plot, and how it follows the traces.

#include "events/eventstablemodel.h"
#include "events/eventstableview.h"
#include "platform/launcher/historycombo.h"
#include "platform/launcher/palettefactory.h"
#include "platform/launcher/wrappanel.h"
#include "platform/otdr/tracestate.h"
#include "plot/qmminiplot.h"
#include "plot/qmplotmarker.h"
#include "refls/reflstableview.h"
#include "tests/twomarkers/shownvalue.h"
#include "tests/window/screen.h"
#include "twomarkers/twomarkersresultwidget.h"
#include "twomarkers/twomarkersview.h"
#include "window/measview.h"

#include <qwt_plot_curve.h>

#include <QHeaderView>
#include <QThreadPool>

#include <cmath>

namespace {

using namespace testing_support; // fixture, builders and units
using Waveform::EventsTableModel;
using Waveform::EventsTableView;
using Waveform::ReflsTableView;
using Waveform::TwoMarkersResultWidget;

class Panelled : public Screen
{
protected:
    EventsTableView* eventsView() const { return window->findChild<EventsTableView*>(); }

    EventsTableModel* events() const { return window->findChild<EventsTableModel*>(); }

    ReflsTableView* reflsView() const { return window->findChild<ReflsTableView*>(); }

    MeasView* bar() const { return window->findChild<MeasView*>(); }

    QWidget* settings() const { return window->findChild<QWidget*>("bottomPanel"); }

    void touch(QWidget* panel) const { QTest::mouseClick(toggle(panel), Qt::LeftButton); }

    void touchButton(const QString& text) const
    {
        for (QPushButton* button : window->findChildren<QPushButton*>()) {
            if (button->text() == text) {
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
        ADD_FAILURE() << "there is no button " << qPrintable(text);
    }

    QList<QmPlotMarker*> markers() const { return window->findChildren<QmPlotMarker*>(); }

    TwoMarkersResultWidget* results() const { return window->findChild<TwoMarkersResultWidget*>(); }

    QString result(int row) const { return shownValue(results(), row); }

    /// Curves that belong to no trace: the band of a section.
    int bands() const
    {
        return plot()->itemList(QwtPlotItem::Rtti_PlotCurve).size() - shownCurves().size();
    }

    void announce(const EventList& list)
    {
        QMetaObject::invokeMethod(window.get(), "setEventListToMainRefl", Q_ARG(EventList, list));
    }

    /// Columns of the overview with the colour of its ticks.
    int ticksInOverview() const
    {
        const QImage image = window->findChild<QmMiniPlot*>()->grab().toImage();
        const QColor ink = PaletteFactory::getPalette("CriticalButton").color(QPalette::Button);
        const QColor darkest = ink.darker(110);
        int count = 0;
        for (int x = 0; x < image.width(); ++x) {
            // Below the curve and above the lower edge; the highlighted area may lie over it.
            const QColor pixel = image.pixelColor(x, image.height() - 12);
            count += pixel.red() - pixel.green() > 20 && pixel.red() >= darkest.red() ? 1 : 0;
        }
        return count;
    }
};

EventList startSectionEnd()
{
    Event start(Event::SpanStart, 0, 10);
    Event section(Event::Fiber, 0, 10);
    section.length = 2000.0;
    section.loss = 0.4;
    Event end(Event::SpanEnd, 2000, 10);
    end.position = 1900;
    return {start, section, end};
}

TEST_F(Panelled, StartsWithTheSettingsAndThePlotAlone)
{
    EXPECT_TRUE(settings()->isVisible());
    EXPECT_FALSE(bar()->isVisible());
    EXPECT_FALSE(eventsView()->isVisible());
    EXPECT_FALSE(reflsView()->isVisible());
    EXPECT_FALSE(results()->isVisible());
    QStringList names;
    for (const QPushButton* button :
         window->findChild<WrapPanel*>()->findChildren<QPushButton*>()) {
        names << button->text();
    }
    EXPECT_EQ(names, QStringList({"Measurement", "Events", "Reflectograms", "Settings"}));
}

TEST_F(Panelled, TablesKeepTheirHeaderAndARowWholeHoweverLowTheyAre)
{
    load("a.sor");
    touch(eventsView());
    touch(reflsView());
    QCoreApplication::processEvents();
    for (QTableView* table :
         {static_cast<QTableView*>(eventsView()), static_cast<QTableView*>(reflsView())}) {
        table->resize(table->width(), table->minimumHeight());
        EXPECT_EQ(table->viewport()->height(), table->verticalHeader()->defaultSectionSize());
    }
}

TEST_F(Panelled, BarAndSettingsTakeTurnsAndTablesAreFree)
{
    touch(eventsView());
    touch(reflsView());
    touch(bar());
    EXPECT_TRUE(bar()->isVisible());
    EXPECT_FALSE(settings()->isVisible());
    EXPECT_TRUE(eventsView()->isVisible());
    EXPECT_TRUE(reflsView()->isVisible());
    touch(settings());
    EXPECT_FALSE(bar()->isVisible());
    EXPECT_TRUE(settings()->isVisible());
    EXPECT_LT(reflsView()->y(), eventsView()->y());
    EXPECT_LT(eventsView()->y(), settings()->y());
}

TEST_F(Panelled, EventsTableIsThatOfTheMainTrace)
{
    load("a.sor");
    EXPECT_EQ(eventsView()->model()->rowCount(), 5) << "three events, and the fibre between them";
    SorSketch bare = SorSketch::plain();
    bare.keyEvents.events.resize(1);
    load("b.sor", bare);
    EXPECT_EQ(events()->rowCount(), 1);
    refls()->setMainRefl(0);
    EXPECT_EQ(events()->rowCount(), 5);
    refls()->deleteAllRefls();
    EXPECT_EQ(events()->rowCount(), 0);
    EXPECT_EQ(events()->columnCount(), 7);
}

TEST_F(Panelled, TouchedEventHasATallTick)
{
    load("a.sor");
    touch(eventsView());
    EXPECT_EQ(tallTicks(), 0);
    const QRect row = eventsView()->visualRect(events()->index(2, 2));
    QTest::mouseClick(eventsView()->viewport(), Qt::LeftButton, {}, row.center());
    EXPECT_EQ(tallTicks(), 1);
}

TEST_F(Panelled, TouchedSectionHasABand)
{
    load("a.sor");
    announce(startSectionEnd());
    ASSERT_EQ(events()->rowCount(), 3);
    EXPECT_EQ(shownTicks(), 2);
    EXPECT_EQ(bands(), 0);
    eventsView()->selectRow(1);
    EXPECT_EQ(tallTicks(), 0);
    EXPECT_EQ(bands(), 1);
    eventsView()->selectRow(2);
    EXPECT_EQ(bands(), 0);
    EXPECT_EQ(tallTicks(), 1);
}

TEST_F(Panelled, FoundEventsBelongToTheMainTraceAndAreShown)
{
    const Reflectogram first = load("a.sor");
    const Reflectogram second = load("b.sor");
    eventsView()->selectRow(1);
    const QSignalSpy shownAnew(refls(), SIGNAL(modelReset()));
    announce(startSectionEnd());
    EXPECT_EQ(shownAnew.size(), 1) << "the set tells the distance of the end";
    EXPECT_EQ(second.getEventList(), startSectionEnd());
    EXPECT_EQ(second.state()->processing, 3);
    EXPECT_EQ(first.getEventList().size(), 5);
    EXPECT_EQ(events()->rowCount(), 3);
    EXPECT_EQ(events()->index(2, EventsTableModel::Number).data(), QVariant(2));
    EXPECT_EQ(tallTicks(), 0) << "a row of the events before is still current";
}

TEST_F(Panelled, FoundEventsWithoutATraceAreNothing)
{
    announce(startSectionEnd());
    EXPECT_EQ(events()->rowCount(), 0);
    EXPECT_EQ(shownTicks(), 0);
    QThreadPool::globalInstance()->waitForDone();
}

TEST_F(Panelled, TotalLossIsThereOnceTheEndIsKnown)
{
    Reflectogram refl = files.measured(
        TraceBuilder().fibre(4_km).behind(2000).attenuation(0.25_dB).noise(0.01_dB, 3));
    refls()->addRefl(refl);
    refl.fillOrl(); // as at the end of the trace, when no event is known yet
    const auto cell = [this](int column) { return refls()->index(0, column).data().toString(); };
    EXPECT_EQ(cell(ReflsTableModel::TotalLoss), "-");
    Event end(Event::SpanEnd, 0, 10);
    end.position = std::lround(TraceBuilder().indexOf(4_km));
    end.coordinate = refl.smpl2dist(static_cast<double>(end.position));
    const QSignalSpy resets(refls(), SIGNAL(modelReset()));
    announce({Event(Event::SpanStart, 0, 10), end});
    const int before = resets.size();
    EXPECT_TRUE(QTest::qWaitFor([&] { return cell(ReflsTableModel::TotalLoss) != "-"; }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return resets.size() > before; }))
        << "the table was not told";
    EXPECT_NEAR(cell(ReflsTableModel::TotalLoss).toDouble(), 1.0, 0.02);
    EXPECT_EQ(cell(ReflsTableModel::Distance), QString::number(end.coordinate, 'f', 2));
    EXPECT_NE(cell(ReflsTableModel::Orl), "-");
}

TEST_F(Panelled, MarkersAreShownWhileTheirBarIs)
{
    load("a.sor");
    ASSERT_EQ(markers().size(), 2);
    touch(bar());
    EXPECT_TRUE(results()->isVisible());
    EXPECT_TRUE(markers()[0]->isVisible());
    EXPECT_TRUE(markers()[1]->isVisible());
    touch(settings());
    EXPECT_FALSE(results()->isVisible());
    EXPECT_FALSE(markers()[0]->isVisible());
}

TEST_F(Panelled, ResultsStandAtTheTopOfTheLegend)
{
    load("a.sor");
    touch(bar());
    auto* legend = window->findChild<QVBoxLayout*>("legendLayout");
    EXPECT_EQ(legend->itemAt(0)->widget(), results());
}

TEST_F(Panelled, MarkersMeasureTheMainTrace)
{
    load("a.sor");
    touch(bar());
    markers()[0]->setXValue(200.0);
    markers()[1]->setXValue(800.0);
    EXPECT_EQ(result(0), QString::number(markers()[0]->xValue(), 'f', 1) + " m");
    EXPECT_NE(result(3), "");
    EXPECT_NE(result(3), "-");
    QThreadPool::globalInstance()->waitForDone();
}

TEST_F(Panelled, ModeOfTheBarIsStoredAndComesBack)
{
    const auto stored = [this] { return config->value("AdvancedParams", "MeasMode").toInt(); };
    touch(bar());
    touchButton("2 pt + LSA");
    EXPECT_EQ(stored(), 1);
    EXPECT_TRUE(bar()->isUsingLsa());
    config->setting("MeasMode", "AdvancedParams")->tryChange(0);
    EXPECT_FALSE(bar()->isUsingLsa());
    config->setting("MeasMode", "AdvancedParams")->tryChange(1);
    expectWarning("No such slot Waveform::Window::rescalePlot(");
    const Window again(config);
    EXPECT_TRUE(again.findChild<MeasView*>()->isUsingLsa());
}

TEST_F(Panelled, MarkersToScreenFetchesThem)
{
    load("a.sor");
    touch(bar());
    plot()->setAxisScale(QwtPlot::xBottom, 2000.0, 2500.0);
    plot()->replot();
    plot()->emitTransformMaps();
    touchButton("Markers to screen");
    for (const QmPlotMarker* marker : markers()) {
        EXPECT_GE(marker->xValue(), 2000.0);
        EXPECT_LE(marker->xValue(), 2500.0);
    }
}

TEST_F(Panelled, WheelAndPageKeysMoveCheckedMarkersFromAnywhere)
{
    load("a.sor");
    touch(bar());
    touch(eventsView());
    QmPlotMarker* marker = markers()[0];
    marker->setChecked(true);
    const int before = marker->x();
    QTest::keyClick(eventsView(), Qt::Key_PageUp);
    EXPECT_EQ(marker->x(), before + 1);
    QTest::keyClick(action(), Qt::Key_PageDown);
    EXPECT_EQ(marker->x(), before);
    const QPoint at = eventsView()->viewport()->rect().center();
    QWheelEvent wheel(at, eventsView()->viewport()->mapToGlobal(at), QPoint(), QPoint(0, 120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(eventsView()->viewport(), &wheel);
    EXPECT_EQ(marker->x(), before + 120);
}

TEST_F(Panelled, OverviewHasATickForEachShownMarker)
{
    load("a.sor");
    touchButton("+");
    EXPECT_EQ(ticksInOverview(), 0);
    touch(bar());
    markers()[0]->setXValue(refls()->mainRefl().maxdist() * 0.3);
    markers()[1]->setXValue(refls()->mainRefl().maxdist() * 0.6);
    EXPECT_EQ(ticksInOverview(), 2);
    touch(settings());
    EXPECT_EQ(ticksInOverview(), 0);
}

TEST_F(Panelled, HiddenNonMainCurvesLeaveTheMainOne)
{
    load("a.sor");
    const Reflectogram main = load("b.sor");
    QMetaObject::invokeMethod(window.get(), "setHiddenNonMainCurves", Q_ARG(bool, true));
    ASSERT_EQ(shownCurves().size(), 1);
    EXPECT_EQ(shownCurves()[0]->reflectogram(), main);
    QMetaObject::invokeMethod(window.get(), "setHiddenNonMainCurves", Q_ARG(bool, false));
    EXPECT_EQ(shownCurves().size(), 2);
}

TEST_F(Panelled, IndexOfRefractionIsThatOfTheMainTrace)
{
    QMetaObject::invokeMethod(window.get(), "setIor", Q_ARG(double, 1.6)); // without a trace
    const Reflectogram other = load("a.sor");
    const Reflectogram refl = load("b.sor");
    const double last = refl.maxdist();
    const double ior = refl.IOR();
    const QString place = events()->index(1, EventsTableModel::Location).data().toString();
    const QSignalSpy resets(events(), SIGNAL(modelReset()));
    QMetaObject::invokeMethod(window.get(), "setIor", Q_ARG(double, 1.6));
    EXPECT_EQ(resets.size(), 1) << "or the table goes on showing the places of before";
    EXPECT_EQ(refl.IOR(), 1.6);
    EXPECT_EQ(other.IOR(), ior);
    const ReflCurve* curve = shownCurves().last();
    EXPECT_NEAR(curve->sample(static_cast<int>(curve->dataSize()) - 1).x(), last * ior / 1.6,
                5 * refl.smpl2dist(1.0));
    EXPECT_NE(events()->index(1, EventsTableModel::Location).data().toString(), place);
}

TEST_F(Panelled, LongerTraceOffersItsWholeView)
{
    const auto isOffered = [this] {
        return window->findChild<QPushButton*>("zoomOutButton")->isVisible()
            && window->findChild<QmMiniPlot*>()->isVisible();
    };
    load("a.sor");
    EXPECT_FALSE(isOffered());
    SorSketch longer = SorSketch::plain();
    longer.samples.resize(2 * longer.samples.size(), 60000);
    load("b.sor", longer);
    EXPECT_TRUE(isOffered());
    refls()->setMainRefl(0);
    EXPECT_FALSE(isOffered());
}

TEST_F(Panelled, LongestPulseFollowsTheCard)
{
    const auto pulses = [this] { return window->findChildren<HistoryCombo*>().at(1)->count(); };
    config->setting("HardwareRevision", "CardInfo")->tryChange(2.4);
    const int without = pulses();
    config->setting("HardwareRevision", "CardInfo")->tryChange(2.5);
    EXPECT_EQ(pulses(), without + 1);
    config->setting("HardwareRevision", "CardInfo")->tryChange(2.0);
    EXPECT_EQ(pulses(), without);
}

} // namespace
