#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace otdr {

class Trace;

/// An event with its dead zone, from one index to another.
struct Disturbance
{
    double from;
    double to;
};

/// The noise of a trace, estimated from its own samples.
///
/// Scatter is told per sample, for a trace without its events and slopes: the median of second
/// differences over one pulse knows neither. Cost: a few hundred thousand steps at most, whatever
/// the length of the trace.
class NoiseProfile
{
public:
    /// Counts of 0.001 dB scatter by 0.29 thousandths; a receiver has more.
    static constexpr double kLeastSigma_dB = 0.0003;

    /// Of the samples first .. last - 1; noise before the light comes or after it has ended is no
    /// scatter of the fibre. pulse: width in samples, > 0. Events, in order, tell nothing of it:
    /// many close to each other would, where they are not known. reach: how far apart samples are
    /// compared, as a part of the usual; closer, fewer events lie in between, but noise that is
    /// alike over a pulse is told less well.
    NoiseProfile(const Trace& trace, double pulse, std::size_t first, std::size_t last,
                 std::vector<Disturbance> events = {}, double reach = 1.0);

    /// Standard deviation of a single sample about the fibre at an index, dB.
    [[nodiscard]] double sigma_dB(double index) const;

    /// No index of a stretch has less, dB.
    [[nodiscard]] double leastSigma_dB(double from, double to) const;

    /// By how much the variance of a mean over n samples exceeds sigma^2 / n: neighbours that pass
    /// the same receiver are alike. At least 1.
    [[nodiscard]] double correlation() const { return alike; }

    /// What a mean over a pulse or two strays from the straight line by beyond its noise, dB: fibre
    /// is not quite even, and receivers are not quite linear.
    [[nodiscard]] double wander_dB() const { return wander; }

    /// Whether the record was long enough to tell that; else it is 0.
    [[nodiscard]] bool knowsWander() const { return isWanderKnown; }

    /// Whether correlation() is told by noise, and not by what rounding makes of the fibre.
    [[nodiscard]] bool isMoreThanRoundings() const { return isNoise; }

    /// Whether most of the fibre was measured in steps that are greater than its noise.
    [[nodiscard]] bool isRounded() const { return 2 * coarseBlocks > sigmas.size(); }

    /// Level of light as strong as the RMS noise (SNR = 1), dB. Where the record does not reach the
    /// noise it follows from the scatter of its last part.
    [[nodiscard]] double rms_dB() const { return rms; }

private:
    /// How far three means in a row are from a straight line.
    struct Bend
    {
        double sigma; ///< of a sample there
        double square; ///< variance of a mean that it tells
    };

    [[nodiscard]] std::size_t strideOfBends(std::size_t length) const;

    /// In order of the scatter.
    [[nodiscard]] std::vector<Bend> bendsOf(const Trace& trace, std::size_t length) const;
    void measureScatter(const Trace& trace, double pulse);
    void breakAtFalls(const Trace& trace, double pulse);
    [[nodiscard]] std::size_t intervalOf(double index) const;
    [[nodiscard]] std::optional<double> scatterBetween(const Trace& trace, double pulse,
                                                       double from, double to) const;
    [[nodiscard]] double weakerBehind(const Trace& trace, double pulse, double fall) const;
    void levelOut(const Trace& trace);
    void measureFloor(const Trace& trace, double pulse);
    void measureCorrelation(const Trace& trace, double pulse);
    void measureLikeness(const Trace& trace, double pulse, const std::vector<Bend>& bends,
                         double length);
    void measureWander(const std::vector<Bend>& bends, double length);

    /// How alike the noise of neighbours is, and the scatter of a sample by what it was taken for.
    struct Likeness
    {
        double correlation;
        double scatter;
    };

    [[nodiscard]] std::optional<Likeness> likenessByLags(const Trace& trace, double pulse) const;
    [[nodiscard]] double differenceOver(const Trace& trace, std::size_t lag) const;

    [[nodiscard]] bool isDisturbed(double from, double to) const;

    std::size_t first;
    std::size_t last;
    std::vector<Disturbance> events;
    double reach;
    std::size_t blockSize = 1;
    std::vector<double> sigmas; ///< of each block
    std::size_t coarseBlocks = 0; ///< those in which most neighbours are equal
    std::vector<double> falls; ///< indices at which the scatter changes at once
    std::vector<double> beforeFalls; ///< what it is in front of each
    double alike = 1.0;
    double wander = 0.0;
    bool isWanderKnown = false;
    bool isNoise = false;
    double rms = 0.0;
};

} // namespace otdr
