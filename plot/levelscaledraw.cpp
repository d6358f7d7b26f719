#include "plot/levelscaledraw.h"

#include "platform/otdr/screennumber.h"
#include "plot/labelspacing.h"

#include <qwt_scale_div.h>
#include <qwt_text.h>

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMostDecimals = 6; ///< far beyond the least span that can be shown
constexpr double kNoDifference = 1e-3; ///< of a step
constexpr double kGap_px = 2.0; ///< between a label and the one above it

double rounded(double value, int decimals)
{
    const double factor = std::pow(10.0, decimals);
    return std::round(value * factor) / factor;
}

} // namespace

QwtText LevelScaleDraw::label(double value) const
{
    const int count = decimals();
    // What is 0 as it is read has no sign.
    return screennumber::fixed(rounded(value, count) + 0.0, count);
}

int LevelScaleDraw::decimals() const
{
    const QList<double> ticks = scaleDiv().ticks(QwtScaleDiv::MajorTick);
    const double step = labelspacing::leastStep(scaleDiv());
    for (int count = 0; count < kMostDecimals; ++count) {
        const bool areTold = std::all_of(ticks.begin(), ticks.end(), [&](double tick) {
            return std::abs(tick - rounded(tick, count)) <= kNoDifference * step;
        });
        if (areTold) {
            return count;
        }
    }
    return kMostDecimals;
}

void LevelScaleDraw::drawLabel(QPainter* painter, double value) const
{
    // Digits have nothing below their line.
    const double label_px = QFontMetricsF(painter->font()).capHeight() + kGap_px;
    if (labelspacing::isLabelled(*this, value, label_px)) {
        QwtScaleDraw::drawLabel(painter, value);
    }
}
