// What stays in its place on the plot, whatever part of the trace is shown.

#include "plot/qmminiplot.h"
#include "plot/qmplotmarker.h"
#include "tests/window/screen.h"
#include "window/measview.h"

#include <QMouseEvent>

#include <cmath>
#include <functional>
#include <utility>
#include <vector>

namespace {

using namespace testing_support; // fixture and builders

class View : public Screen
{
protected:
    QPushButton* button(const char* name) const { return window->findChild<QPushButton*>(name); }

    void touch(const char* name) const { QTest::mouseClick(button(name), Qt::LeftButton); }

    void key(Qt::Key which) const { QTest::keyClick(window.get(), which); }

    /// A finger that goes this way over a widget.
    static void drag(QWidget* widget, const QPoint& from, const QPoint& by)
    {
        QTest::mousePress(widget, Qt::LeftButton, Qt::NoModifier, from);
        const QPoint at = from + by;
        QMouseEvent move(QEvent::MouseMove, at, widget->mapToGlobal(at), Qt::LeftButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(widget, &move);
        QTest::mouseRelease(widget, Qt::LeftButton, Qt::NoModifier, at);
    }

    void pan(const QPoint& by) const { drag(plot()->canvas(), QPoint(300, 120), by); }

    void showMarkers() const
    {
        auto* bar = window->findChild<MeasView*>();
        QTest::mouseClick(toggle(bar), Qt::LeftButton);
    }

    QList<QmPlotMarker*> markers() const { return window->findChildren<QmPlotMarker*>(); }

    /// All that changes what is seen, one after the other.
    [[nodiscard]] std::vector<std::pair<std::string, std::function<void()>>> deeds() const
    {
        return {{"in", [this] { touch("zoomInButton"); }},
                {"right", [this] { key(Qt::Key_Right); }},
                {"up", [this] { key(Qt::Key_Up); }},
                {"pan there",
                 [this] {
                     pan({130, 40});
                 }},
                {"pan back",
                 [this] {
                     pan({-230, -60});
                 }},
                {"out", [this] { touch("zoomOutButton"); }},
                {"left", [this] { key(Qt::Key_Left); }},
                {"down", [this] { key(Qt::Key_Down); }},
                {"larger", [this] { window->resize(1000, 600); }},
                {"1:1", [this] { touch("zoomOffButton"); }}};
    }
};

TEST_F(View, MarkersStayAtTheirDistances)
{
    load("a.sor");
    showMarkers();
    ASSERT_EQ(markers().size(), 2);
    for (QmPlotMarker* marker : markers()) {
        ASSERT_TRUE(marker->isVisible());
        drag(marker, QPoint(14, marker->height() - 26), QPoint(60, 0));
    }
    const double first = markers()[0]->xValue();
    const double second = markers()[1]->xValue();
    for (const auto& [name, deed] : deeds()) {
        deed();
        QCoreApplication::processEvents();
        EXPECT_EQ(markers()[0]->xValue(), first) << name;
        EXPECT_EQ(markers()[1]->xValue(), second) << name;
        for (const QmPlotMarker* marker : markers()) {
            const double column = plot()->canvasMap(QwtPlot::xBottom).transform(marker->xValue());
            EXPECT_NEAR(marker->x() + QmMarker::markerBorder, column, 0.51) << name;
            EXPECT_EQ(marker->height(), plot()->canvas()->height()) << name;
        }
    }
}

TEST_F(View, TicksStandOnTheLineAsItIsDrawn)
{
    load("a.sor");
    const ReflCurve* curve = shownCurves()[0];
    for (const auto& [name, deed] : deeds()) {
        deed();
        QCoreApplication::processEvents();
        EXPECT_EQ(shownTicks(), 3) << name;
        for (const QwtPlotItem* item : plot()->itemList(QwtPlotItem::Rtti_PlotMarker)) {
            const QPointF tick = dynamic_cast<const QwtPlotMarker*>(item)->value();
            bool isOnLine = false;
            for (std::size_t i = 0; i < curve->dataSize() && !isOnLine; ++i) {
                isOnLine = curve->sample(static_cast<int>(i)) == tick;
            }
            EXPECT_TRUE(isOnLine) << name << ' ' << tick.x();
        }
    }
}

TEST_F(View, CurveIsSampledForIt)
{
    const double last = load("a.sor").maxdist();
    const double step = refls()->mainRefl().smpl2dist(1.0);
    for (const auto& [name, deed] : deeds()) {
        deed();
        QCoreApplication::processEvents();
        const ReflCurve* curve = shownCurves()[0];
        const double from = std::max(0.0, view().x() - view().width());
        const double to = std::min(last, view().right() + view().width());
        // A point is the highest sample of its column.
        const double column = std::max(step, view().width() / plot()->canvas()->width());
        EXPECT_NEAR(curve->sample(0).x(), from, column) << name;
        EXPECT_NEAR(curve->sample(static_cast<int>(curve->dataSize()) - 1).x(), to, column) << name;
    }
}

TEST_F(View, IsWhatTheOverviewHighlights)
{
    load("a.sor");
    auto* overview = window->findChild<QmMiniPlot*>();
    /// What the highlight covers in the overview.
    const auto highlight = [&] {
        const QImage with = overview->grab().toImage();
        overview->nohl();
        const QImage without = overview->grab().toImage();
        QRect covered;
        for (int y = 0; y < with.height(); ++y) {
            for (int x = 0; x < with.width(); ++x) {
                if (with.pixel(x, y) != without.pixel(x, y)) {
                    covered |= QRect(x, y, 1, 1);
                }
            }
        }
        return covered;
    };
    const auto expectHighlighted = [&](const char* after) {
        ASSERT_TRUE(overview->isVisible()) << after;
        const QRectF seen = overview->transformArea(view()).normalized();
        const QRect covered = highlight();
        EXPECT_NEAR(covered.left(), seen.left(), 1.0) << after;
        EXPECT_NEAR(covered.right(), seen.right(), 1.0) << after;
        EXPECT_NEAR(covered.top(), seen.top(), 1.0) << after;
        EXPECT_NEAR(covered.bottom(), seen.bottom(), 1.0) << after;
    };
    touch("zoomInButton");
    expectHighlighted("a step in");
    pan({60, 20});
    expectHighlighted("a pan");
    key(Qt::Key_Right);
    expectHighlighted("an arrow");
}

TEST_F(View, OfRealTracesEndsAtAFewSamplesAndComesBackWhole)
{
    const QStringList traces = realTraces();
    if (traces.isEmpty()) {
        GTEST_SKIP() << "no trace files at hand";
    }
    for (const QString& file : traces) {
        refls()->deleteAllRefls();
        refls()->addReflFromFile(file);
        const Reflectogram refl = refls()->mainRefl();
        touch("zoomOffButton");
        const QRectF whole = view();
        ASSERT_NEAR(whole.width(), refl.maxdist(), 1e-6) << qPrintable(file);
        int steps = 0;
        for (; steps < 60 && button("zoomInButton")->isVisible(); ++steps) {
            touch("zoomInButton");
        }
        const double narrowest = std::max(0.5, 5.0 * refl.smpl2dist(1.0));
        EXPECT_NEAR(view().width(), narrowest, 0.005) << qPrintable(file);
        EXPECT_EQ(steps, std::ceil(std::log2(whole.width() / narrowest))) << qPrintable(file);
        EXPECT_NEAR(view().center().x(), whole.center().x(), 1e-6) << qPrintable(file);
        // The labels of the new view may make the canvas wider or narrower.
        const double drag_m = 200.0 * view().width() / plot()->canvas()->width();
        pan({200, 0});
        EXPECT_NEAR(view().center().x(), whole.center().x() - drag_m, 1e-6) << qPrintable(file);
        touch("zoomOffButton");
        EXPECT_EQ(view(), whole) << qPrintable(file);
    }
}

} // namespace
