#include "programs/otdrreport/picture.h"

#include "plot/otdrdistancescaledraw.h"
#include "plot/plot.h"
#include "plot/reflcurve.h"
#include "plot/stackorder.h"

#include <qwt_plot_grid.h>
#include <qwt_plot_marker.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

#include <QBuffer>
#include <QImage>
#include <QPalette>

namespace otdrreport {

namespace {

const QSize kSize(1280, 640);
const QColor kTraceColour(Qt::darkBlue); // that of the first trace on the screen
const QColor kMarkColour(Qt::red);
const QColor kGridColour(0xc6, 0xd0, 0xd9);
const QMargins kMargins(14, 10, 16, 10);
constexpr int kFont_px = 16;

/// Numbers nearer to each other than this stand below each other.
constexpr double kMarksApart_percent = 2.0;

/// A mark lies wholly within this share of the window, so that its number is not cut.
constexpr double kMarkMargin_percent = 1.0;

void addMark(Waveform::Plot& plot, const ReportedEvent& event, const ChartWindow& window, int row)
{
    const double left_percent = window.left_percent(event.distance_m);
    if (!(left_percent >= 0.0 && left_percent <= 100.0)) {
        return;
    }
    QFont font("Liberation Sans");
    font.setPixelSize(kFont_px);
    QwtText number(QString(row, '\n') + QString::number(event.number));
    number.setFont(font);
    number.setColor(kMarkColour);
    auto* mark = new QwtPlotMarker; // the plot owns it from attach() on
    mark->setLineStyle(QwtPlotMarker::VLine);
    mark->setLinePen(kMarkColour, 1.0);
    mark->setXValue(event.distance_m);
    mark->setLabel(number);
    const bool atBorder = left_percent > 100.0 - kMarkMargin_percent;
    mark->setLabelAlignment(Qt::AlignTop | (atBorder ? Qt::AlignLeft : Qt::AlignRight));
    mark->setZ(stackorder::kEventMark);
    mark->attach(&plot);
}

void addMarks(Waveform::Plot& plot, const Report& report)
{
    if (!report.chart.hasDistances) {
        return;
    }
    QVector<double> places_percent;
    for (const ReportedEvent& event : report.events) {
        places_percent << report.chart.window.left_percent(event.distance_m);
    }
    const QVector<int> rows = markRows(places_percent, kMarksApart_percent);
    for (int i = 0; i < report.events.size(); ++i) {
        addMark(plot, report.events[i], report.chart.window, rows[i]);
    }
}

void prepare(Waveform::Plot& plot, const TraceChart& chart)
{
    const ChartWindow& window = chart.window;
    // Fonts and colours are named, so that the picture does not depend on whose desktop it is.
    QFont font("Liberation Sans");
    font.setPixelSize(kFont_px);
    const QPalette paper(Qt::black, Qt::white, Qt::white, Qt::darkGray, kGridColour, Qt::black,
                         Qt::white);
    plot.setPalette(paper);
    plot.setCanvasBackground(Qt::white);
    plot.detachItems(QwtPlotItem::Rtti_PlotGrid); // it took its colour when the plot was made
    plot.createGrid()->attach(&plot);
    plot.setContentsMargins(kMargins);
    plot.resize(kSize);
    plot.setMaxX(window.end_m);
    for (const QwtPlot::Axis axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
        plot.enableAxis(axis);
        plot.axisWidget(axis)->setFont(font);
    }
    plot.enableAxis(QwtPlot::xBottom, chart.hasDistances);
    plot.axisWidget(QwtPlot::xBottom)->setMinBorderDist(0, 0);
    plot.axisWidget(QwtPlot::yLeft)->setMinBorderDist(0, 0);
    plot.axisScaleDraw(QwtPlot::yLeft)->setMinimumExtent(0.0);
    QwtText levelUnit("dB");
    levelUnit.setFont(font);
    plot.setAxisTitle(QwtPlot::yLeft, levelUnit);
    plot.setAxisScale(QwtPlot::xBottom, window.start_m, window.end_m);
    plot.setAxisScale(QwtPlot::yLeft, window.low_dB, window.high_dB);
    plot.updateLayout();
    plot.replot();
}

} // namespace

QByteArray pictureOf(const Reflectogram& refl, const Report& report)
{
    Waveform::Plot plot;
    prepare(plot, report.chart);
    ReflCurve curve(plot.clip(), refl, kTraceColour);
    curve.attach(&plot);
    curve.setBaseline(report.chart.window.low_dB);
    addMarks(plot, report);
    plot.replot();

    QImage image(kSize, QImage::Format_RGB32);
    image.fill(Qt::white);
    plot.render(&image);
    curve.detach();

    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? png : QByteArray();
}

} // namespace otdrreport
