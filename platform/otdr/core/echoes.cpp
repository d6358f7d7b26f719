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

/// What overloads the receiver may reflect as much as glass in air, and nothing reflects more.
constexpr double kStrongest_dB = -14.0;

/// The connector of an instrument reflects at most so much.
constexpr double kPort_dB = -30.0;

/// Of more reflections than any link has, the strongest are mirrors.
constexpr std::size_t kMostMirrors = 64;

bool losesNothing(const DetectedEvent& event)
{
    const double least = std::max(kNoLoss_dB, kNoLossErrors * event.lossError_dB);
    return std::isnan(event.loss_dB) || std::abs(event.loss_dB) < least;
}

/// Level of the fibre at an event; where it could not be fitted in front of it, by that behind. NaN
/// where neither was.
double fibreAt_dB(const DetectedEvent& event)
{
    const Line& line = event.before.samples > 0 ? event.before : event.behind;
    return line.samples > 0 ? line.at(event.index) : DetectedEvent::kUnknown;
}

struct Mirror
{
    double index = 0.0;
    double reflectance_dB = 0.0;
    double level_dB = DetectedEvent::kUnknown; ///< of the fibre there
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
        if (!reflects || !(event.index > mirrors.front().index + pulse)) {
            return;
        }
        const double most_dB =
            std::min(event.reflectance_dB + 2.0 * event.hidden_dB, kStrongest_dB);
        const double reflectance_dB = std::max(event.reflectance_dB, most_dB);
        mirrors.push_back({event.index, reflectance_dB, fibreAt_dB(event)});
        if (mirrors.size() > kMostMirrors) {
            mirrors.erase(std::min_element(mirrors.begin() + 1, mirrors.end(),
                                           [](const Mirror& a, const Mirror& b) {
                                               return a.reflectance_dB < b.reflectance_dB;
                                           }));
        }
    }

    /// Light that went to a mirror j, back to i, on to k and home comes from as far behind k as j
    /// lies behind i, whichever of j and k was first: for every i and j there is one place for k.
    [[nodiscard]] bool isEcho(const DetectedEvent& event) const
    {
        for (auto i = mirrors.begin(); i != mirrors.end(); ++i) {
            for (auto j = i + 1; j != mirrors.end(); ++j) {
                if (isEchoBy(i, j, event)) {
                    return true;
                }
            }
        }
        return false;
    }

private:
    using Place = std::vector<Mirror>::const_iterator;

    /// Whether there is a mirror k, from j on, by which these two make the event.
    [[nodiscard]] bool isEchoBy(Place i, Place j, const DetectedEvent& event) const
    {
        const double tolerance = kPlacePulses * pulse + kPlacePart * event.index;
        const double place = event.index + i->index - j->index;
        auto k = std::lower_bound(
            j, mirrors.end(), place - tolerance,
            [](const Mirror& mirror, double index) { return mirror.index < index; });
        for (; k != mirrors.end() && k->index < place + tolerance; ++k) {
            if (event.reflectance_dB <= most_dB(*i, *j, *k, event) + kStrength_dB) {
                return true;
            }
        }
        return false;
    }

    /// How strong the echo may seem as a reflection at its place, dB: by what the way there and
    /// home would have lost more than the detour did.
    [[nodiscard]] static double most_dB(const Mirror& i, const Mirror& j, const Mirror& k,
                                        const DetectedEvent& echo)
    {
        const double reflected = i.reflectance_dB + j.reflectance_dB + k.reflectance_dB;
        const double back = std::isfinite(i.level_dB) ? i.level_dB : j.level_dB;
        const double notLost = j.level_dB + k.level_dB - back - fibreAt_dB(echo);
        return std::isfinite(notLost) ? reflected + 2.0 * notLost : reflected;
    }

    double pulse;
    std::vector<Mirror> mirrors; ///< in order, the port first
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
