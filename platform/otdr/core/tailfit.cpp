#include "platform/otdr/core/tailfit.h"

#include "platform/otdr/core/decibels.h"
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
constexpr int kHalvings = 6;

/// The slopes of the fibre are told so many times more, each from the last; of a line that seems so
/// much brighter than it the fibre is not seen.
constexpr int kRounds = 2;
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
    const bool isUsual = std::isfinite(usual.spread_dB);
    for (const Piece& piece : given) {
        pieces.push_back(
            meansOf(trace, piece, isUsual ? std::optional(usual.slope_dB) : std::nullopt));
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
    if (!line || !(line->sigma_dB > 0.0)) {
        return result;
    }
    result.line = *line;
    result.line.line.slope_dB = slope_dB.value_or(line->line.slope_dB);
    const double variance = line->weight * std::pow(line->sigma_dB * kNepersPerDb, 2);
    const double finest = std::max(1.0, std::floor(kFinestPulses * trace.scale().pulse));
    for (const auto& [from, last] : piece) {
        double to = 0.0;
        for (double at = std::ceil(from); at < last; at = to) {
            const double length = std::max(finest, std::floor(kPartOfWay * (at - origin)));
            to = std::min(std::ceil(last), at + length);
            const double middle = 0.5 * (at + to - 1.0);
            const double power = powerRatio(trace.mean_dB(at, to) - result.line.at(middle));
            result.add(
                {middle - line->line.centre, power - 1.0, (to - at) / (power * power * variance)});
        }
    }
    if (std::isfinite(usual.spread_dB)) {
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
    return std::exp((origin - at) / constant)
        * powerRatio(pieces.front().line.at(origin) - piece.line.at(at));
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
        squares += piece.lightSquares - piece.through(piece.light).of(piece.light);
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

/// Looks beside the best time constant, ever closer.
void TailFit::refine(double pulse)
{
    double ratio = kRatio;
    for (int k = 0; k < kHalvings; ++k) {
        ratio = std::sqrt(ratio);
        const double best = tail.constant;
        look(std::min(best * ratio, kSlowest * pulse));
        look(std::max(best / ratio, kFastest * pulse));
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
    double freedom = -2.0 * static_cast<double>(pieces.size() + 1);
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
    const auto error_dB = [&](double own, double part, double constant) {
        const double variance = own + part * part * tail.variance + constant * constant;
        return std::sqrt(misfit() * variance) / power * kDbPerNeper;
    };
    const double level_dB =
        error_dB(piece.spread / piece.determinant(), byTail.level, byConstant.level);
    SideLine result = piece.line;
    result.line.level_dB += levelOfRatio_dB(power);
    result.line.slope_dB += fibre.slope / power * kDbPerNeper;
    result.weight =
        std::pow(level_dB / result.sigma_dB, 2) * static_cast<double>(result.line.samples);
    result.slopeError_dB =
        error_dB(piece.weight / piece.determinant(), byTail.slope, byConstant.slope);
    return result;
}

} // namespace otdr
