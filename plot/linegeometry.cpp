#include "plot/linegeometry.h"

#include <qwt_scale_map.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace linegeometry {

namespace {

constexpr double kMargin = 5.0;
constexpr double kReach = 1e6;
constexpr double kGrab = 10.0;

/// A map's transform of its own inverse misses a whole pixel by rounding errors far below this.
constexpr double kRounding = 1e-6;

struct Part
{
    double from = 0.0;
    double to = 1.0;
};

/// Narrows the part of a line, from 0 at its start to 1 at its end, to where start + t * length
/// lies within reach (Liang and Barsky, 1984, for one axis).
void narrow(Part& part, double start, double length)
{
    if (length == 0.0) {
        if (std::abs(start) > kReach) {
            part.to = -1.0;
        }
        return;
    }
    const double first = (-kReach - start) / length;
    const double second = (kReach - start) / length;
    part.from = std::max(part.from, std::min(first, second));
    part.to = std::min(part.to, std::max(first, second));
}

} // namespace

Framed framed(const QLineF& line)
{
    const QRectF bounds = QRectF(line.p1(), line.p2()).normalized();
    const int width = static_cast<int>(std::abs(bounds.width()) + 2.0 * kMargin);
    const int height = static_cast<int>(std::abs(bounds.height()) + 2.0 * kMargin);
    return {QRect(qRound(bounds.x() - kMargin), qRound(bounds.y() - kMargin), width, height),
            line.translated(kMargin - bounds.x(), kMargin - bounds.y())};
}

QLineF mapped(const QLineF& line, const QwtScaleMap& xMap, const QwtScaleMap& yMap)
{
    return {xMap.transform(line.x1()), yMap.transform(line.y1()), xMap.transform(line.x2()),
            yMap.transform(line.y2())};
}

QLineF withinReach(const QLineF& line)
{
    const std::array<double, 4> ends {line.x1(), line.y1(), line.x2(), line.y2()};
    const auto isInside = [](double end) { return std::abs(end) <= kReach; };
    const auto isFinite = [](double end) { return std::isfinite(end); };
    if (std::all_of(ends.begin(), ends.end(), isInside)) {
        return line;
    }
    if (!std::all_of(ends.begin(), ends.end(), isFinite)) {
        return {};
    }
    Part part;
    narrow(part, line.x1(), line.dx());
    narrow(part, line.y1(), line.dy());
    return part.from > part.to ? QLineF() : QLineF(line.pointAt(part.from), line.pointAt(part.to));
}

bool grabs(double marker, int x)
{
    return std::abs(x - marker) <= kGrab + kRounding;
}

} // namespace linegeometry
