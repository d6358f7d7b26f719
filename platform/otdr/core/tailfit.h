#pragma once

#include "platform/otdr/core/fibretrace.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace otdr {

/// What fibres of a link fall by, dB by the sample, and by how much they differ from that; +inf
/// where nothing is known of it.
struct UsualSlope
{
    double slope_dB = 0.0;
    double spread_dB = std::numeric_limits<double>::infinity();

    [[nodiscard]] bool isKnown() const { return std::isfinite(spread_dB); }
};

/// The tail that brighter light leaves in the receiver, on the straight pieces of fibre behind it.
///
/// The tail is light of its own and fades exponentially, whatever is lost on the way. Least squares
/// of powers, weighed by what they are, tell it together with a level and a slope for each piece.
class TailFit
{
public:
    /// Stretches of fibre on one line, in order, each from one index to another.
    using Piece = std::vector<std::pair<double, double>>;

    /// Pieces in order, at least one, of a stretch each at least; the brighter light ends at the
    /// first. The cost is that of some hundred means of samples.
    TailFit(const FibreTrace& trace, const std::vector<Piece>& pieces, const UsualSlope& usual);

    /// Whether each piece has the samples that it takes to tell a line from a tail.
    [[nodiscard]] bool isKnown() const { return known; }

    /// Sum of squares that lines leave, and lines with a tail, by the variance of a sample.
    [[nodiscard]] double straightSquares() const;

    [[nodiscard]] double squares() const { return tail.squares; }

    /// Mean of the squares that the tail leaves, 1 at least, and more where what it leaves of
    /// neighbours is alike: then lines and tail are not all that is there.
    [[nodiscard]] double misfit() const { return leftOver; }

    /// Whether the tail is there, beyond all chance and all that it leaves.
    [[nodiscard]] bool isPlain() const;

    /// The line through the fibre of a piece alone, with its standard error. Empty where no light
    /// would be left to it.
    [[nodiscard]] std::optional<SideLine> fibre(std::size_t piece) const;

private:
    /// Sums over the means of a piece, of a function and of its product with the place.
    struct Function
    {
        double sum = 0.0;
        double moment = 0.0;

        void add(double value, double weight, double at);
    };

    /// Level and slope of the best line for a function.
    struct Straight
    {
        double level = 0.0;
        double slope = 0.0;

        /// What the line explains of the product of that function with another.
        [[nodiscard]] double of(const Function& other) const;
    };

    struct Mean
    {
        double at; ///< from the middle of the piece, samples
        double over; ///< power over that of the piece's line, less 1
        double weight;
    };

    /// A piece with its means over and under a line that falls about as its fibre does.
    struct Means
    {
        SideLine line;
        std::vector<Mean> means;
        double weight = 0.0; ///< sums over the means
        double moment = 0.0;
        double spread = 0.0;
        Function light;
        double lightSquares = 0.0;

        void add(const Mean& mean);

        [[nodiscard]] double determinant() const { return weight * spread - moment * moment; }

        [[nodiscard]] Straight through(const Function& function) const;
    };

    struct Tail
    {
        double constant = 0.0; ///< samples
        double power = 0.0; ///< at the first index, over that of the first line there
        double variance = 0.0;
        double squares = std::numeric_limits<double>::infinity();
    };

    [[nodiscard]] Means meansOf(const FibreTrace& trace, const Piece& piece,
                                std::optional<double> slope_dB) const;
    [[nodiscard]] double shareOf(const Means& piece, const Mean& mean, double constant) const;
    [[nodiscard]] Function sharesOf(const Means& piece, double constant) const;
    [[nodiscard]] double likenessOfNeighbours() const;
    [[nodiscard]] double squaresByFreedom() const;
    [[nodiscard]] Tail tailWith(double constant) const;
    void findTail(double pulse);
    void refine(double pulse);
    void look(double constant);
    [[nodiscard]] Straight fibreWithout(const Tail& one, const Means& piece) const;
    [[nodiscard]] std::optional<double> slopeOf_dB(const Means& piece) const;
    [[nodiscard]] Straight errorOfConstant(const Means& piece) const;

    UsualSlope usual;
    double origin;
    std::vector<Means> pieces;
    bool known = false;
    Tail tail;
    double leftOver = 1.0;
};

} // namespace otdr
