#include "plot/zoomgeometry.h"

#include <algorithm>
#include <cmath>

namespace zoom {

namespace {

// Differences of spans below this are none, m.
constexpr double kNarrowestTolerance = 0.005;

// What whole units must differ by to count as different.
constexpr double kUnitTolerance = 1e-5;

/// By how much a span may be off because its bounds are rounded: at 50 km that is far below a
/// micrometre, and yet a step that ended on a limit would be seen on the wrong side of it.
double rounding(const Bounds& shown)
{
    constexpr double kRelative = 1e-12;
    return kRelative * std::max(std::abs(shown.low), std::abs(shown.up));
}

bool differByUnits(double a, double b)
{
    return std::abs(std::trunc(a - b)) > kUnitTolerance;
}

} // namespace

std::optional<double> inFactor(const Bounds& shown, double factor, double smallestSpan)
{
    const double span = shown.span();
    if (!(factor > 0.0) || smallestSpan >= span - rounding(shown)) {
        return std::nullopt;
    }
    return smallestSpan > span / factor ? span / smallestSpan : factor;
}

std::optional<double> outFactor(const Bounds& shown, double factor, double greatestSpan)
{
    const double span = shown.span();
    if (!(factor > 0.0) || greatestSpan <= span + rounding(shown)) {
        return std::nullopt;
    }
    return greatestSpan < factor * span ? greatestSpan / span : factor;
}

Bounds scaled(const Bounds& shown, double factor)
{
    const double half = shown.span() * factor * 0.5;
    return {shown.centre() - half, shown.centre() + half};
}

Bounds scaledWithin(const Bounds& shown, double factor, double smallestSpan, double greatestSpan)
{
    const double wanted = shown.span() * factor;
    const double half = std::min(std::max(wanted, smallestSpan), greatestSpan) * 0.5;
    return {shown.centre() - half, shown.centre() + half};
}

QRectF rectOf(const Bounds& x, const Bounds& y)
{
    return {x.low, y.low, x.span(), y.span()};
}

Bounds xBounds(const QRectF& rect)
{
    return {rect.x(), rect.x() + rect.width()};
}

Bounds yBounds(const QRectF& rect)
{
    return {rect.y(), rect.y() + rect.height()};
}

bool isZoomed(const QRectF& fullView, const QRectF& view)
{
    return differByUnits(fullView.height(), view.height())
        || differByUnits(fullView.width(), view.width());
}

bool isNarrowest(const QRectF& view, double smallestSpan)
{
    return xBounds(view).span() <= smallestSpan + kNarrowestTolerance;
}

} // namespace zoom
