#include "programs/otdrreport/axisticks.h"

#include "programs/otdrreport/reporttext.h"

#include <qwt_scale_div.h>
#include <qwt_scale_engine.h>

#include <algorithm>
#include <cmath>

namespace otdrreport {

QVector<AxisTick> axisTicks(double low, double high, int about, double unit)
{
    QVector<AxisTick> ticks;
    if (!(high > low) || !std::isfinite(high - low)) {
        return ticks;
    }
    const QwtScaleDiv division =
        QwtLinearScaleEngine().divideScale(low / unit, high / unit, about, 0);
    const QList<double> values = division.ticks(QwtScaleDiv::MajorTick);
    const double step = values.size() > 1 ? values[1] - values[0] : high / unit - low / unit;
    const int decimals = std::max(0, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
    for (const double value : values) {
        ticks << AxisTick {value * unit, shown(value, decimals)};
    }
    return ticks;
}

} // namespace otdrreport
