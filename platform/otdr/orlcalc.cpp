#include "platform/otdr/orlcalc.h"

#include "platform/otdr/tracefigures.h"
#include "platform/otdr/tracestate.h"

#include <utility>

ORLCalc::ORLCalc(const Reflectogram& refl)
    : refl(refl)
{
}

void ORLCalc::setReflectogram(Reflectogram newRefl)
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::swap(refl, newRefl);
}

double ORLCalc::recalculate(double a_m, double b_m)
{
    std::shared_ptr<const TraceState> state;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        state = refl.state();
    }
    return state ? stretchReturnLoss_dB(*state, a_m, b_m) : Event::kUnknown;
}
