#include "plot/levelscaledraw.h"

#include "platform/otdr/screennumber.h"

#include <qwt_scale_div.h>
#include <qwt_text.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMostDecimals = 6; ///< far beyond the least span that can be shown
constexpr double kNoDifference = 1e-3; ///< of a step

/// From one major tick to the next, the least of them; the whole span where there are not two.
double leastStep(const QwtScaleDiv& division)
{
    const QList<double> ticks = division.ticks(QwtScaleDiv::MajorTick);
    double least = std::abs(division.range());
    for (int i = 1; i < ticks.size(); ++i) {
        least = std::min(least, std::abs(ticks.at(i) - ticks.at(i - 1)));
    }
    return least;
}

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
    const double step = leastStep(scaleDiv());
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
