#include "plot/labelspacing.h"

#include <qwt_scale_div.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_map.h>

#include <algorithm>
#include <cmath>

namespace labelspacing {

double leastStep(const QwtScaleDiv& division)
{
    const QList<double> ticks = division.ticks(QwtScaleDiv::MajorTick);
    double least = std::abs(division.range());
    for (int i = 1; i < ticks.size(); ++i) {
        least = std::min(least, std::abs(ticks.at(i) - ticks.at(i - 1)));
    }
    return least;
}

int stride(double step_px, double label_px)
{
    if (step_px >= label_px) {
        return 1;
    }
    constexpr double kMost = 1000.0; // no axis has more ticks
    return static_cast<int>(std::ceil(label_px / std::max(label_px / kMost, step_px)));
}

bool isLabelled(double value, double step, int stride)
{
    return stride == 1 || std::fmod(std::round(value / step), stride) == 0.0;
}

bool isLabelled(const QwtScaleDraw& scale, double value, double label_px)
{
    const QwtScaleMap& map = scale.scaleMap();
    const double step = leastStep(scale.scaleDiv());
    const double step_px = std::abs(map.transform(value + step) - map.transform(value));
    return isLabelled(value, step, stride(step_px, label_px));
}

} // namespace labelspacing
