#pragma once

#include <QRectF>

#include <optional>

/// How a view of the plot changes when it is zoomed by steps, without the plot.
///
/// A view is a rectangle in scale units: x the first distance (m), y the lowest level (dB), width
/// and height the spans.
namespace zoom {

/// What one axis shows, from low to up.
struct Bounds
{
    double low = 0.0;
    double up = 0.0;

    [[nodiscard]] double span() const { return up - low; }

    [[nodiscard]] double centre() const { return (low + up) * 0.5; }
};

/// The factor by which a step into the view shrinks what an axis shows: the wanted one, or less of
/// it, so that the step ends on the smallest span. Empty where the span is that small already, and
/// for a factor that is not positive.
std::optional<double> inFactor(const Bounds& shown, double factor, double smallestSpan);

/// The factor by which a step out of the view widens what an axis shows: the wanted one, or less of
/// it, so that the step ends on the greatest span. Empty where the span is that great already, and
/// for a factor that is not positive.
std::optional<double> outFactor(const Bounds& shown, double factor, double greatestSpan);

/// Bounds with the same centre and the span times factor.
Bounds scaled(const Bounds& shown, double factor);

/// The same, with a span of not less than smallestSpan and then of not more than greatestSpan. Only
/// the size is bounded: the result may reach past the full view.
Bounds scaledWithin(const Bounds& shown, double factor, double smallestSpan, double greatestSpan);

QRectF rectOf(const Bounds& x, const Bounds& y);
Bounds xBounds(const QRectF& rect);
Bounds yBounds(const QRectF& rect);

/// Whether a view differs from the full one by a whole metre in width or a whole dB in height;
/// smaller differences are no zoom.
bool isZoomed(const QRectF& fullView, const QRectF& view);

/// Whether a view is as narrow as it may become, m.
bool isNarrowest(const QRectF& view, double smallestSpan);

} // namespace zoom
