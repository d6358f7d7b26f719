// What brighter light leaves in the receiver, on the fibre behind it: events that are none, and
// lines that are bent.

#include "platform/otdr/core/eventsites.h"
#include "platform/otdr/core/fibrebehind.h"
#include "platform/otdr/core/tailfit.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace otdr {

namespace {

/// Light ten times that of the fibre behind it leaves a tail that counts. It is sought on pieces of
/// fibre that begin within so many pulses, and on so many at most.
constexpr double kBright_dB = 5.0;
constexpr double kReachPulses = 150.0;
constexpr std::size_t kMostPieces = 12;

/// A change of level on a tail stands out by so many standard errors.
constexpr double kStandsOut = 5.0;

} // namespace

/// Whether the light before piece k of the fibre is bright enough to leave a tail on it, as that of
/// the port is.
bool EventSites::isBehindBright(std::size_t k) const
{
    return k == 0 || brightness_dB(places[k - 1], fibreTo(k)) >= kBright_dB;
}

/// What is known of the slope beforehand. Where the fibre seems to fall as none does, no more than
/// that it falls like one.
UsualSlope EventSites::usual() const
{
    const double kilometre = fibreTrace->scale().kilometre;
    if (kilometre > 0.0 && -usualSlope_dB * kilometre < kSteepFibre_dBPerKm) {
        return {usualSlope_dB, slopeSpread_dB};
    }
    const double steepest_dB = fibreTrace->scale().steepest_dB;
    return std::isfinite(steepest_dB) ? UsualSlope {-0.5 * steepest_dB, 0.25 * steepest_dB}
                                      : UsualSlope {};
}

/// Pieces of the fibre from piece k on, as far as one tail may reach: no further than to brighter
/// light.
std::vector<EventSites::Stretch> EventSites::piecesFrom(std::size_t k) const
{
    std::vector<Stretch> pieces;
    const double reach = lineFrom(k) + kReachPulses * fibreTrace->scale().pulse;
    for (std::size_t i = k; i <= places.size() && pieces.size() < kMostPieces; ++i) {
        const double from = lineFrom(i);
        const double to = std::min(fibreTo(i), from + fibreTrace->scale().longestWindow);
        if (to - from < kLevelSamples || (i > k && (from > reach || isBehindBright(i)))) {
            break;
        }
        pieces.emplace_back(from, to);
    }
    return pieces;
}

/// What a tail makes of a place on it that comes so many pieces behind the first.
EventSites::OnTail EventSites::onTail(std::vector<Stretch> pieces, std::size_t piece) const
{
    if (piece + 1 >= pieces.size()) {
        return OnTail::Unknown;
    }
    // One line must reach over the place.
    pieces[piece + 1].second =
        std::min(pieces[piece + 1].second, pieces[piece].first + fibreTrace->scale().longestWindow);
    std::vector<TailFit::Piece> apart;
    std::vector<TailFit::Piece> joined;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        apart.push_back({pieces[i]});
        if (i == piece + 1) {
            joined.back().push_back(pieces[i]);
        } else {
            joined.push_back({pieces[i]});
        }
    }
    const TailFit two(*fibreTrace, apart, usual());
    const TailFit one(*fibreTrace, joined, usual());
    if (!two.isKnown() || !one.isKnown()) {
        return OnTail::Unknown;
    }
    if (one.squares() - two.squares() >= kStandsOut * kStandsOut * two.misfit()) {
        return two.isPlain() ? OnTail::Event : OnTail::Unknown;
    }
    return one.isPlain() && one.squares() <= two.straightSquares() ? OnTail::Tail : OnTail::Unknown;
}

bool EventSites::dropTails()
{
    const std::size_t before = places.size();
    std::size_t bright = 0;
    for (std::size_t k = 0; k < places.size();) {
        bright = isBehindBright(k) ? k : bright;
        Site& site = places[k];
        const bool isStep = !site.peak && !site.glows && site.left && site.right;
        const OnTail seen = isStep ? onTail(piecesFrom(bright), k - bright) : OnTail::Unknown;
        site.standsOnTail = seen == OnTail::Event;
        if (seen == OnTail::Tail) {
            places.erase(places.begin() + static_cast<std::ptrdiff_t>(k));
        } else {
            ++k;
        }
    }
    if (places.size() == before) {
        return false;
    }
    measure();
    return true;
}

void EventSites::takeTailsAway(double loss_dB, double significance)
{
    for (std::size_t k = 0; k <= places.size(); ++k) {
        const std::vector<Stretch> pieces =
            isBehindBright(k) ? piecesFrom(k) : std::vector<Stretch> {};
        if (pieces.empty()) {
            continue;
        }
        std::vector<TailFit::Piece> lines(pieces.size());
        std::transform(pieces.begin(), pieces.end(), lines.begin(),
                       [](const Stretch& piece) { return TailFit::Piece {piece}; });
        const TailFit fit(*fibreTrace, lines, usual());
        for (std::size_t i = 0; i < pieces.size() && fit.isPlain(); ++i) {
            straighten(k + i, fit.fibre(i), pieces[i]);
        }
    }
    for (Site& site : places) {
        tellLoss(site);
    }
    findBorders(loss_dB, significance);
}

/// Takes the line of a piece of the fibre for those beside its events, if they are fitted there.
void EventSites::straighten(std::size_t k, const std::optional<SideLine>& line,
                            const Stretch& piece)
{
    if (line && k > 0 && places[k - 1].right) {
        places[k - 1].right = line;
    }
    if (line && k < places.size() && places[k].left && fibreTo(k) <= piece.second) {
        places[k].left = line;
    }
}

} // namespace otdr
