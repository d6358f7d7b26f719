#include "window/fullview.h"

namespace Waveform {

double fullViewWidth(double range_m)
{
    constexpr double kWidest_m = 1e7; // a hundred times what the longest pulse reaches
    if (!(range_m > kLeastSpan_m)) { // no number included
        return kLeastSpan_m;
    }
    return range_m < kWidest_m ? range_m : kWidest_m;
}

} // namespace Waveform
