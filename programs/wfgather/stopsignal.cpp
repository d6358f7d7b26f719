#include "programs/wfgather/stopsignal.h"

#include <ctime>

namespace gather {

StopSignal::StopSignal()
{
    sigemptyset(&signalSet);
    sigaddset(&signalSet, SIGTERM);
    sigaddset(&signalSet, SIGINT);
    sigprocmask(SIG_BLOCK, &signalSet, nullptr);
}

bool StopSignal::raised()
{
    return waitUntil(Clock::time_point::min());
}

bool StopSignal::waitUntil(Clock::time_point time)
{
    using namespace std::chrono;
    while (!isRaised) {
        const Clock::time_point now = Clock::now();
        const nanoseconds left = time > now ? nanoseconds(time - now) : nanoseconds(0);
        const auto whole = duration_cast<seconds>(left);
        timespec patience {};
        patience.tv_sec = static_cast<std::time_t>(whole.count());
        patience.tv_nsec = static_cast<long>(nanoseconds(left - whole).count());
        isRaised = sigtimedwait(&signalSet, nullptr, &patience) > 0;
        if (left == nanoseconds(0)) {
            break;
        }
    }
    return isRaised;
}

} // namespace gather
