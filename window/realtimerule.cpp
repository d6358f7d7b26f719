#include "window/realtimerule.h"

namespace Waveform {

bool realtimeAllowed(int pulse_ns, const QString& wavelength)
{
    constexpr int kFirstTooLong_ns = 276;
    return pulse_ns < kFirstTooLong_ns && wavelength != QLatin1String("all");
}

} // namespace Waveform
