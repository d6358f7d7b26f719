#include "acquisition/gatherpatience.h"

#include <algorithm>
#include <cmath>

namespace {

// The program sends a tick with every refresh, once a second; a slow analysis lies between two.
constexpr int kSilenceLimit_ms = 30000;
constexpr double kLongestSilence_ms = 24 * 3600 * 1000.0;

constexpr int kStopPatience_ms = 5000;

} // namespace

GatherPatience::GatherPatience(QObject* parent)
    : QObject(parent)
    , silenceLimit_ms(kSilenceLimit_ms)
{
    silence.setSingleShot(true);
    connect(&silence, SIGNAL(timeout()), SIGNAL(silent()));
    obedience.setSingleShot(true);
    obedience.setTimerType(Qt::PreciseTimer); // others may come a twentieth too early
    obedience.setInterval(kStopPatience_ms);
    connect(&obedience, SIGNAL(timeout()), SIGNAL(disobedient()));
}

void GatherPatience::setSilenceLimit(int limit_ms)
{
    silenceLimit_ms = limit_ms;
}

void GatherPatience::setPace(double timesSlower)
{
    pace = std::isfinite(timesSlower) ? std::max(1.0, timesSlower) : 1.0;
}

void GatherPatience::listenOn()
{
    silence.start(static_cast<int>(std::min(silenceLimit_ms * pace, kLongestSilence_ms)));
}

void GatherPatience::expectObedience()
{
    if (!obedience.isActive()) {
        obedience.start();
    }
}

void GatherPatience::forget()
{
    silence.stop();
    obedience.stop();
}
