#include "platform/otdr/core/echoes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace otdr {

namespace {

/// Places agree to a part of the pulse and of the distance.
constexpr double kPlacePulses = 0.5;
constexpr double kPlacePart = 2e-5;

/// A loss of fewer standard errors, or of less, is none.
constexpr double kNoLossErrors = 3.0;
constexpr double kNoLoss_dB = 0.02;

/// What an echo may be stronger by than its path allows: reflectances are that uncertain.
constexpr double kStrength_dB = 4.0;

/// The connector of an instrument reflects at most so much.
constexpr double kPort_dB = -30.0;

bool losesNothing(const DetectedEvent& event)
{
    const double least = std::max(kNoLoss_dB, kNoLossErrors * event.lossError_dB);
    return std::isnan(event.loss_dB) || std::abs(event.loss_dB) < least;
}

struct Mirror
{
    double index = 0.0;
    double reflectance_dB = 0.0;
    double level_dB = 0.0; ///< of the fibre there
};

class EchoSearch
{
public:
    EchoSearch(double pulse, double port)
        : pulse(pulse)
    {
        mirrors.push_back({port, kPort_dB, DetectedEvent::kUnknown});
    }

    /// What lies behind may be an echo of this event. In order along the fibre.
    void add(const DetectedEvent& event)
    {
        const bool reflects = !std::isnan(event.reflectance_dB) && !event.echo;
        if (reflects && event.index > mirrors.front().index + pulse) {
            mirrors.push_back({event.index, event.reflectance_dB, event.before.at(event.index)});
        }
    }

    /// Light that went to a mirror j, back to i, to j again and home comes from as far behind j as
    /// j lies behind i: for every i there is one place for j.
    [[nodiscard]] bool isEcho(const DetectedEvent& event) const
    {
        const double tolerance = 0.5 * (kPlacePulses * pulse + kPlacePart * event.index);
        for (auto i = mirrors.begin(); i != mirrors.end(); ++i) {
            const double place = 0.5 * (event.index + i->index);
            auto j = std::lower_bound(
                i + 1, mirrors.end(), place - tolerance,
                [](const Mirror& mirror, double index) { return mirror.index < index; });
            for (; j != mirrors.end() && j->index < place + tolerance; ++j) {
                if (isStrongEnough(*i, *j, event)) {
                    return true;
                }
            }
        }
        return false;
    }

private:
    [[nodiscard]] static bool isStrongEnough(const Mirror& i, const Mirror& j,
                                             const DetectedEvent& echo)
    {
        // Of the detour i .. j and back, the way from j on is a real way that the light did not
        // take: seen as a reflection at its place the echo seems the stronger by what it did not
        // lose there.
        const double notLost = j.level_dB - echo.before.at(echo.index);
        double most = 2.0 * j.reflectance_dB + i.reflectance_dB + kStrength_dB;
        if (std::isfinite(notLost)) {
            const double detour = std::isfinite(i.level_dB) ? i.level_dB - j.level_dB : 0.0;
            most += 2.0 * notLost - 2.0 * detour;
        }
        return echo.reflectance_dB <= most;
    }

    double pulse;
    std::vector<Mirror> mirrors; ///< in order
};

} // namespace

void markEchoes(std::vector<DetectedEvent>& events, double pulse, double port)
{
    EchoSearch search(pulse, port);
    for (DetectedEvent& event : events) {
        if (event.kind == DetectedEvent::Kind::Reflective && losesNothing(event)) {
            event.echo = search.isEcho(event);
        }
        search.add(event);
    }
}

} // namespace otdr
