#pragma once

#include "events/eventmarkersview.h"
#include "plot/plot.h"
#include "plot/reflcurve.h"
#include "tests/support/tracefiles.h"

#include <qwt_plot_curve.h>

#include <gmock/gmock.h>

#include <memory>

namespace testing_support {

/// The ticks of a trace on its plot.
class TicksOnPlot : public testing::Test
{
protected:
    TicksOnPlot()
        : refl(files.plain())
        , curve({0.0, 5000.0, 10000}, refl, Qt::darkBlue)
        , view(std::make_unique<EventMarkersView>(nullptr))
    {
        curve.attach(&plot);
        view->attach(&plot);
    }

    ~TicksOnPlot() override
    {
        view.reset();
        curve.detach();
    }

    void show(const EventList& events)
    {
        refl.setEventList(events);
        view->setCurve(&curve);
    }

    /// The band of a section; null where none is drawn.
    [[nodiscard]] const QwtPlotCurve* band() const
    {
        for (const QwtPlotItem* item : plot.itemList(QwtPlotItem::Rtti_PlotCurve)) {
            if (item != &curve) {
                return dynamic_cast<const QwtPlotCurve*>(item);
            }
        }
        return nullptr;
    }

    TraceFiles files;
    Reflectogram refl;
    Waveform::Plot plot;
    ReflCurve curve;
    std::unique_ptr<EventMarkersView> view;
};

} // namespace testing_support
