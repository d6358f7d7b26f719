#include "tests/plot/labelink.h"

#include <qwt_plot.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

#include <QCoreApplication>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <functional>

namespace testing_support {

namespace {

/// Lengths of the runs of inked lines; lines without ink that are no more than so many do not end
/// one.
std::vector<int> runs(int count, int mostBlank, const std::function<bool(int)>& isInked)
{
    std::vector<int> lengths;
    int last = -1;
    int first = -1;
    for (int i = 0; i < count; ++i) {
        if (!isInked(i)) {
            continue;
        }
        if (first >= 0 && i - last - 1 > mostBlank) {
            lengths.push_back(last - first + 1);
            first = i;
        }
        first = first < 0 ? i : first;
        last = i;
    }
    if (first >= 0) {
        lengths.push_back(last - first + 1);
    }
    return lengths;
}

/// The labels of an axis, black on white and nothing else, where they stand on the plot.
QImage labelsOf(QwtPlot& plot, QwtPlot::Axis axis)
{
    plot.show();
    plot.replot();
    QCoreApplication::processEvents(); // what is laid out anew for the labels
    QImage image(plot.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QwtScaleDraw& draw = *plot.axisScaleDraw(axis);
    const bool hadTicks = draw.hasComponent(QwtAbstractScaleDraw::Ticks);
    const bool hadBackbone = draw.hasComponent(QwtAbstractScaleDraw::Backbone);
    draw.enableComponent(QwtAbstractScaleDraw::Ticks, false);
    draw.enableComponent(QwtAbstractScaleDraw::Backbone, false);
    QPainter painter(&image);
    painter.translate(plot.axisWidget(axis)->pos());
    painter.setFont(plot.axisWidget(axis)->font());
    QPalette black;
    black.setColor(QPalette::Text, Qt::black);
    draw.draw(&painter, black);
    draw.enableComponent(QwtAbstractScaleDraw::Ticks, hadTicks);
    draw.enableComponent(QwtAbstractScaleDraw::Backbone, hadBackbone);
    return image;
}

bool isDark(const QImage& image, int x, int y)
{
    return qGray(image.pixel(x, y)) < 128;
}

} // namespace

std::vector<int> labelWidths(QwtPlot& plot)
{
    const QImage image = labelsOf(plot, QwtPlot::xBottom);
    // Letters of one label are closer to each other than a blank is wide.
    const int blank =
        QFontMetrics(plot.axisWidget(QwtPlot::xBottom)->font()).horizontalAdvance(' ');
    return runs(image.width(), blank, [&](int x) {
        for (int y = 0; y < image.height(); ++y) {
            if (isDark(image, x, y)) {
                return true;
            }
        }
        return false;
    });
}

std::vector<int> labelHeights(QwtPlot& plot)
{
    const QImage image = labelsOf(plot, QwtPlot::yLeft);
    return runs(image.height(), 0, [&](int y) {
        for (int x = 0; x < image.width(); ++x) {
            if (isDark(image, x, y)) {
                return true;
            }
        }
        return false;
    });
}

} // namespace testing_support
