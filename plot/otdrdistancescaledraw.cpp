#include "plot/otdrdistancescaledraw.h"

#include "plot/labelspacing.h"

#include <qwt_scale_div.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Truncated; what no int holds becomes the nearest that does.
int whole(double distance_m)
{
    constexpr double kMost = std::numeric_limits<int>::max();
    return std::isnan(distance_m) ? 0 : static_cast<int>(std::clamp(distance_m, -kMost, kMost));
}

} // namespace

OtdrDistanceScaleDraw::OtdrDistanceScaleDraw(QwtScaleWidget* widget)
    : QObject(widget)
    , widget(widget)
{
    connect(widget, SIGNAL(scaleDivChanged()), SLOT(scaleDivChanged()));
    scaleDivChanged();
}

QwtText OtdrDistanceScaleDraw::label(double value) const
{
    unsigned int precision = 0;
    unsigned int divisor = 1;
    calcPrecision(&precision, &divisor);
    return QString("%L1").arg(value / divisor, 0, 'f', static_cast<int>(precision),
                              QLatin1Char(' '));
}

void OtdrDistanceScaleDraw::calcPrecision(unsigned int* precision, unsigned int* divisor) const
{
    const int range = whole(scaleDiv().upperBound() - scaleDiv().lowerBound());
    const bool nearStart = whole(scaleDiv().lowerBound()) < 1000;
    *divisor = 1;
    if (range <= 0) {
        *precision = 2;
    } else if (range < 10) {
        *precision = 1;
    } else if (range >= 1000) {
        *divisor = 1000;
        *precision = range < 5000 ? 1 : 0;
    } else if (nearStart) {
        *precision = 0;
    } else {
        *divisor = 1000;
        *precision = range < 100 ? 3 : range < 500 ? 2 : 1;
    }
}

void OtdrDistanceScaleDraw::drawLabel(QPainter* painter, double value) const
{
    const double blank_px = QFontMetricsF(painter->font()).horizontalAdvance(' ');
    const double label_px = maxLabelWidth(painter->font()) + blank_px;
    if (labelspacing::isLabelled(*this, value, label_px)) {
        QwtScaleDraw::drawLabel(painter, value);
    }
}

void OtdrDistanceScaleDraw::setAxisTitle(QString text)
{
    QwtText title(text);
    title.setRenderFlags(Qt::AlignRight | Qt::AlignVCenter);
    widget->setTitle(title);
}

void OtdrDistanceScaleDraw::scaleDivChanged()
{
    unsigned int precision = 0;
    unsigned int divisor = 1;
    calcPrecision(&precision, &divisor);
    const QString unit = divisor == 1000 ? tr("km") : tr("m");
    // Every new title lays the plot out again, which comes back here.
    if (widget->title().text() != unit) {
        setAxisTitle(unit);
    }
}
