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
    const otdr::EventSite site = siteOf(*state, index);
    // Each level needs its own line only: an end of the fibre has one before it and none behind.
    if (const auto before = otdr::fibreBefore(*state->trace, site)) {
        in_dB = before->at(index);
    }
    if (const auto behind = otdr::fibreBehind(*state->trace, site)) {
        out_dB = behind->at(index);
    }
    loss_dB = in_dB - out_dB;
}
