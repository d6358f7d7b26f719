#include "plot/radialeffect.h"

#include <QLineF>

const QRadialGradient& RadialEffect::at(const QRectF& rect, const QGradientStops& stops)
{
    constexpr double kSamePlace = 1e-5;
    const QPointF centre = rect.center();
    if (!gradient || QLineF(gradient->center(), centre).length() > kSamePlace
        || gradient->radius() != rect.width()) {
        gradient.emplace(centre, rect.width());
        gradient->setStops(stops);
    }
    return *gradient;
}
