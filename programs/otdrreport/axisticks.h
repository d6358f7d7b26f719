#pragma once

#include <QString>
#include <QVector>

namespace otdrreport {

/// A mark on an axis.
struct AxisTick
{
    double value = 0.0;
    QString label; ///< the value in the unit of the axis
};

/// The marks of an axis from low to high: at round values, about so many; none where high is not
/// above low.
///
/// Labels are value / unit with as many decimals as tell the marks apart.
[[nodiscard]] QVector<AxisTick> axisTicks(double low, double high, int about, double unit);

} // namespace otdrreport
