#include "platform/otdr/lsaline.h"

#include "platform/otdr/core/linefit.h"
#include "platform/otdr/tracestate.h"

#include <algorithm>

LSALine::LSALine(double x1_m, double x2_m, const Reflectogram& refl)
    : refl(refl)
{
    updateLineX1X2(x1_m, x2_m);
}

QLineF LSALine::updateLineX1X2(double x1_m, double x2_m)
{
    current = QLineF(x1_m, refl.powerAtDist(x1_m), x2_m, refl.powerAtDist(x2_m));
    const auto state = refl.state();
    if (state && state->trace) {
        const double i1 = state->indexAt(x1_m);
        const double i2 = state->indexAt(x2_m);
        // Both ends count as inside: a marker on a sample takes it in.
        const double behind = std::max(i1, i2) + 1e-9;
        if (const auto line =
                otdr::fitLineBetween(*state->trace, std::min(i1, i2) - 1e-9, behind)) {
            current = QLineF(x1_m, line->at(i1), x2_m, line->at(i2));
        }
    }
    return current;
}
