#pragma once

#include "acquisition/model.h"
#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/warningwindow.h"
#include "platform/launcher/zuconfigmodel.h"
#include "plot/plot.h"
#include "plot/reflcurve.h"
#include "refls/reflstablemodel.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/platform/launcher/wrapbutton.h"
#include "tests/plot/shownpart.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"
#include "window/window.h"

#include <qwt_plot_marker.h>
#include <qwt_symbol.h>

#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

#include <memory>
#include <set>

namespace testing_support {

using Waveform::Model;
using Waveform::Plot;
using Waveform::ReflsTableModel;
using Waveform::Window;

/// The colours of the topmost rows of what lies over the canvas, where nothing is written.
inline std::set<QRgb> coloursOfMargin(const QLabel* label)
{
    const QRect rows(label->pos(), QSize(label->width(), label->margin()));
    const QImage picture = label->parentWidget()->grab(rows).toImage();
    std::set<QRgb> found;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            found.insert(picture.pixel(x, y));
        }
    }
    return found;
}

/// The window with its model, shown in the instrument's size; nothing is loaded.
class Screen : public testing::Test
{
protected:
    Screen()
        : config(ZuConfigModel::instance(&card, "zuotdr"))
    {
        // The one connection that is not to take: the end of a drag has nothing left to do.
        expectWarning("No such slot Waveform::Window::rescalePlot(");
        window = std::make_unique<Window>(config);
        model = std::make_unique<Model>(&card);
        window->setModel(model.get());
        window->resize(800, 480);
        window->show();
        QCoreApplication::processEvents();
        stopped = std::make_unique<QSignalSpy>(model.get(), SIGNAL(stopped(MeasModel*)));
    }

    ~Screen() override
    {
        window.reset();
        model.reset();
        config->freeLater();
    }

    Plot* plot() const { return window->findChild<Plot*>(); }

    /// Ticks of events that are current.
    int tallTicks() const
    {
        int count = 0;
        for (const QwtPlotItem* item : plot()->itemList(QwtPlotItem::Rtti_PlotMarker)) {
            const auto* tick = dynamic_cast<const QwtPlotMarker*>(item);
            count += tick->symbol()->size().height() > 500 ? 1 : 0;
        }
        return count;
    }

    ReflsTableModel* refls() const { return window->reflsTableModel(); }

    QPushButton* action() const { return window->actionButton(); }

    QString warning() const { return window->notification()->text(); }

    QList<ReflCurve*> shownCurves() const
    {
        QList<ReflCurve*> found;
        for (QwtPlotItem* item : plot()->itemList(QwtPlotItem::Rtti_PlotCurve)) {
            if (auto* curve = dynamic_cast<ReflCurve*>(item)) {
                found << curve;
            }
        }
        return found;
    }

    int shownTicks() const
    {
        int count = 0;
        for (const QwtPlotItem* item : plot()->itemList(QwtPlotItem::Rtti_PlotMarker)) {
            count += item->isVisible() ? 1 : 0;
        }
        return count;
    }

    /// The button that shows and hides a panel.
    QPushButton* toggle(const QWidget* panel) const
    {
        return buttonOf(*window->findChild<WrapPanel*>(), panel);
    }

    /// Until panels that were shown or hidden have found their places, which takes more than one
    /// turn of the events.
    static void settle() { QTest::qWait(50); }

    QRectF view() const
    {
        plot()->updateAxes();
        return shownPart(*plot());
    }

    Reflectogram load(const QString& name, const SorSketch& sketch = SorSketch::plain())
    {
        refls()->addReflFromFile(files.write(name, sketch));
        return refls()->mainRefl();
    }

    void configure(const char* key, const QVariant& value)
    {
        config->setting(key, "MeasParams")->tryChange(value);
    }

    void press() { QTest::mouseClick(action(), Qt::LeftButton); }

    const AcquisitionDir directory;
    const ConfigHome home;
    const FakePrograms programs;
    TraceFiles files;
    CardController card;
    ZuConfigModel* config;
    std::unique_ptr<Window> window;
    std::unique_ptr<Model> model;
    std::unique_ptr<QSignalSpy> stopped;
};

} // namespace testing_support
