#include "platform/otdr/core/tailfit.h"

#include "platform/otdr/core/decibels.h"
#include "platform/otdr/core/samplerange.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace otdr {

namespace {

/// Means are taken over this part of a pulse at least, and of the way from where the tail begins:
/// it fades ever more slowly. A piece with fewer tells no line beside a tail.
constexpr double kFinestPulses = 0.25;
constexpr double kPartOfWay = 0.05;
constexpr std::size_t kFewestMeans = 4;

/// Time constants that a receiver may have, pulses: those that are tried, with a ratio between two
/// of them, and by how many roots of that ratio the best of them is made better.
constexpr double kFastest = 0.5;
constexpr double kSlowest = 20.0;
constexpr double kRatio = 1.32;
constexpr int kConstants = 14;
constexpr int kHalvings = 4;

/// The slopes of the fibre are told so many times more, each from the last; of a line that seems so
/// much brighter than it the fibre is not seen.
constexpr int kRounds = 4;
constexpr double kLeastPower = 0.05;

/// By what part of it the time constant is changed to see what it tells.
constexpr double kStep = 0.02;

/// The tail is there where it explains what lines leave by ten standard errors, squared. Neighbours
/// are not taken to be more alike than this.
constexpr double kPlain = 100.0;
constexpr double kMostAlike = 0.95;

/// Of products of sums that are equal but for rounding, this part may be left.
constexpr double kRounding = 1e-9;

} // namespace

void TailFit::Function::add(double value, double weight, double at)
{
    sum += weight * value;
    moment += weight * value * at;
}

double TailFit::Straight::of(const Function& other) const
{
    return level * other.sum + slope * other.moment;
}

void TailFit::Means::add(const Mean& mean)
{
    means.push_back(mean);
    weight += mean.weight;
    moment += mean.weight * mean.at;
    spread += mean.weight * mean.at * mean.at;
    light.add(mean.over, mean.weight, mean.at);
    lightSquares += mean.weight * mean.over * mean.over;
}

TailFit::Straight TailFit::Means::through(const Function& function) const
{
    if (!(determinant() > kRounding * weight * spread)) {
        return {function.sum / weight, 0.0};
    }
    return {(function.sum * spread - function.moment * moment) / determinant(),
            (function.moment * weight - function.sum * moment) / determinant()};
}

TailFit::TailFit(const FibreTrace& trace, const std::vector<Piece>& given, const UsualSlope& usual)
    : usual(usual)
    , origin(given.front().front().first)
{
    for (const Piece& piece : given) {
        pieces.push_back(
            meansOf(trace, piece, usual.isKnown() ? std::optional(usual.slope_dB) : std::nullopt));
        if (pieces.back().means.size() < kFewestMeans) {
            return;
        }
    }
    known = true;
    findTail(trace.scale().pulse);
    // Powers over a line that falls otherwise than the fibre bend.
    for (int round = 0; round < kRounds; ++round) {
        for (std::size_t k = 0; k < pieces.size(); ++k) {
            pieces[k] = meansOf(trace, given[k], slopeOf_dB(pieces[k]));
        }
        const double constant = tail.constant;
        tail = {};
        look(constant);
        refine(trace.scale().pulse);
    }
    const double alike = likenessOfNeighbours();
    leftOver = std::max(1.0, squaresByFreedom() * (1.0 + alike) / (1.0 - alike));
}

/// The means of a piece over a line that falls so much from one sample to the next, or by its own
/// slope. No means where there is no line.
TailFit::Means TailFit::meansOf(const FibreTrace& trace, const Piece& piece,
                                std::optional<double> slope_dB) const
{
    Means result;
    const auto line = trace.fit(piece.front().first, piece.back().second);
    if (!line) {
        return result;
    }
    result.line = *line;
    result.line.line.slope_dB = slope_dB.value_or(line->line.slope_dB);
    // By the noise in its middle: beside bright light its own is told with the tail in it.
    const double variance = line->weight * std::pow(line->sigma_dB * kNepersPerDb, 2);
    const double finest = std::max(1.0, std::floor(kFinestPulses * trace.scale().pulse));
    for (const auto& [from, last] : piece) {
        const SampleRange range = samplesBetween(from, last, trace.samples().size());
        const auto end = static_cast<double>(range.last);
        double to = 0.0;
        for (auto at = static_cast<double>(range.first); at < end; at = to) {
            const double length = std::max(finest, std::floor(kPartOfWay * (at - origin)));
            to = std::min(end, at + length);
            const double middle = 0.5 * (at + to - 1.0);
            const double power = powerRatio(trace.mean_dB(at, to) - result.line.at(middle));
            result.add(
                {middle - line->line.centre, power - 1.0, (to - at) / (power * power * variance)});
        }
    }
    if (usual.isKnown()) {
        // What is known of the slope beforehand is one more value, and no tail has a part in it.
        const double weight = 1.0 / std::pow(usual.spread_dB * kNepersPerDb, 2);
        const double slope = (usual.slope_dB - result.line.line.slope_dB) * kNepersPerDb;
        result.spread += weight;
        result.light.moment += weight * slope;
        result.lightSquares += weight * slope * slope;
    }
    return result;
}

/// The fibre of a piece without a tail, over the line of the piece.
TailFit::Straight TailFit::fibreWithout(const Tail& one, const Means& piece) const
{
    const Straight all = piece.through(piece.light);
    const Straight byTail = piece.through(sharesOf(piece, one.constant));
    return {all.level - one.power * byTail.level, all.slope - one.power * byTail.slope};
}

/// The slope of its fibre, if it is one.
std::optional<double> TailFit::slopeOf_dB(const Means& piece) const
{
    const Straight fibre = fibreWithout(tail, piece);
    const double power = 1.0 + fibre.level;
    return piece.line.line.slope_dB
        + (power > kLeastPower ? fibre.slope / power * kDbPerNeper : 0.0);
}

/// The tail at a mean, of one that is as bright as the first line where it begins.
double TailFit::shareOf(const Means& piece, const Mean& mean, double constant) const
{
    const double at = piece.line.line.centre + mean.at;
    const double over_dB = pieces.front().line.at(origin) - piece.line.at(at);
    return std::exp((origin - at) / constant + over_dB * kNepersPerDb);
}

TailFit::Function TailFit::sharesOf(const Means& piece, double constant) const
{
    Function shares;
    for (const Mean& mean : piece.means) {
        shares.add(shareOf(piece, mean, constant), mean.weight, mean.at);
    }
    return shares;
}

TailFit::Tail TailFit::tailWith(double constant) const
{
    double squares = 0.0;
    double product = 0.0;
    double shown = 0.0;
    for (const Means& piece : pieces) {
        Function share;
        double shareSquares = 0.0;
        double crossed = 0.0;
        for (const Mean& mean : piece.means) {
            const double value = shareOf(piece, mean, constant);
            share.add(value, mean.weight, mean.at);
            shareSquares += mean.weight * value * value;
            crossed += mean.weight * value * mean.over;
        }
        squares += std::max(0.0, piece.lightSquares - piece.through(piece.light).of(piece.light));
        product += crossed - piece.through(piece.light).of(share);
        shown += std::max(0.0, shareSquares - piece.through(share).of(share));
    }
    Tail result {constant, 0.0, 0.0, squares};
    if (shown > 0.0 && product > 0.0) {
        result.power = product / shown;
        result.variance = 1.0 / shown;
        result.squares = std::max(0.0, squares - product * product / shown);
    }
    return result;
}

void TailFit::look(double constant)
{
    const Tail one = tailWith(constant);
    tail = one.squares < tail.squares ? one : tail;
}

void TailFit::findTail(double pulse)
{
    for (int k = 0; k < kConstants; ++k) {
        look(kFastest * std::pow(kRatio, k) * pulse);
    }
    refine(pulse);
}

/// Looks beside the best time constant, ever closer, and at last where the parabola through the
/// best of them and both beside it is least: bright tails tell it better than any steps do.
void TailFit::refine(double pulse)
{
    const auto lookAt = [&](double constant) {
        look(std::clamp(constant, kFastest * pulse, kSlowest * pulse));
    };
    double ratio = kRatio;
    for (int k = 0; k < kHalvings; ++k) {
        ratio = std::sqrt(ratio);
        const double best = tail.constant;
        lookAt(best * ratio);
        lookAt(best / ratio);
    }
    const double slower = tailWith(tail.constant * ratio).squares;
    const double faster = tailWith(tail.constant / ratio).squares;
    const double bend = slower + faster - 2.0 * tail.squares;
    if (bend > 0.0) {
        lookAt(tail.constant * std::pow(ratio, 0.5 * (faster - slower) / bend));
    }
}

double TailFit::straightSquares() const
{
    return tail.variance > 0.0 ? tail.squares + tail.power * tail.power / tail.variance
                               : tail.squares;
}

/// Correlation of what is left of one mean with what is left of the next.
double TailFit::likenessOfNeighbours() const
{
    double squares = 0.0;
    double products = 0.0;
    for (const Means& piece : pieces) {
        const Straight fibre = fibreWithout(tail, piece);
        double last = 0.0;
        for (const Mean& mean : piece.means) {
            const double tailHere = tail.power * shareOf(piece, mean, tail.constant);
            const double off = (mean.over - fibre.level - fibre.slope * mean.at - tailHere)
                * std::sqrt(mean.weight);
            squares += off * off;
            products += off * last;
            last = off;
        }
    }
    return squares > 0.0 ? std::clamp(products / squares, 0.0, kMostAlike) : 0.0;
}

double TailFit::squaresByFreedom() const
{
    // Taken by the tail, and by level and slope of each piece; what is known of that tells it too.
    double freedom = -2.0 - (usual.isKnown() ? 1.0 : 2.0) * static_cast<double>(pieces.size());
    for (const Means& piece : pieces) {
        freedom += static_cast<double>(piece.means.size());
    }
    return tail.squares / std::max(1.0, freedom);
}

bool TailFit::isPlain() const
{
    return known && straightSquares() - tail.squares > kPlain * misfit();
}

/// What a standard error of the time constant changes of the fibre of a piece.
TailFit::Straight TailFit::errorOfConstant(const Means& piece) const
{
    const Tail slower = tailWith(tail.constant * (1.0 + kStep));
    const Tail faster = tailWith(tail.constant * (1.0 - kStep));
    const double bend = slower.squares + faster.squares - 2.0 * tail.squares;
    const Straight more = fibreWithout(slower, piece);
    const Straight less = fibreWithout(faster, piece);
    // The squares grow by one for a standard error.
    const double steps = bend > 0.0 ? std::sqrt(2.0 / bend) : 0.0;
    return {0.5 * (more.level - less.level) * steps, 0.5 * (more.slope - less.slope) * steps};
}

std::optional<SideLine> TailFit::fibre(std::size_t index) const
{
    const Means& piece = pieces[index];
    const Straight fibre = fibreWithout(tail, piece);
    const double power = 1.0 + fibre.level;
    if (!(power > kLeastPower)) {
        return std::nullopt;
    }
    // What the line's own means tell, the brightness of the tail, and its time constant.
    const Straight byTail = piece.through(sharesOf(piece, tail.constant));
    const Straight byConstant = errorOfConstant(piece);
    const double toDb = kDbPerNeper / power;
    const auto product = [&](double own, double Straight::*one, double Straight::*other) {
        return misfit() * toDb * toDb
            * (own / piece.determinant() + byTail.*one * byTail.*other * tail.variance
               + byConstant.*one * byConstant.*other);
    };
    const double level = product(piece.spread, &Straight::level, &Straight::level);
    const double both = product(-piece.moment, &Straight::level, &Straight::slope);
    const double slope = product(piece.weight, &Straight::slope, &Straight::slope);
    SideLine result = piece.line;
    result.line.level_dB += levelOfRatio_dB(power);
    result.line.slope_dB += fibre.slope * toDb;
    result.slopeError_dB = std::sqrt(slope);
    result.surest = -both / slope;
    result.weight = std::max(0.0, level - both * both / slope)
        * static_cast<double>(result.line.samples) / (result.sigma_dB * result.sigma_dB);
    return result;
}

} // namespace otdr
