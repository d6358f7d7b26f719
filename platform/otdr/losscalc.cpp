#include "platform/otdr/losscalc.h"

#include "platform/otdr/core/loss.h"
#include "platform/otdr/reflectogram.h"
#include "platform/otdr/tracefigures.h"
#include "platform/otdr/tracestate.h"

LossCalc::LossCalc(long position, const Reflectogram& refl)
    : loss_dB(Event::kUnknown)
    , in_dB(Event::kUnknown)
    , out_dB(Event::kUnknown)
{
    const auto state = refl.state();
    if (!state || !state->trace) {
        return;
    }
    const double index = state->indexAt(0.0) + static_cast<double>(position);
    const otdr::EventLoss found = otdr::eventLoss(*state->trace, siteOf(*state, index));
    loss_dB = found.loss_dB;
    in_dB = found.in_dB;
    out_dB = found.out_dB;
}
