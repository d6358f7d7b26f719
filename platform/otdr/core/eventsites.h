#pragma once

#include "platform/otdr/core/fibretrace.h"
#include "platform/otdr/core/peakgroup.h"
#include "platform/otdr/core/tailfit.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace otdr {

/// A place of the fibre where something may be: one event, or a group within one dead zone.
struct Site
{
    double at = 0.0; ///< index where the fibre before it ends
    double behind = 0.0; ///< from here on the fibre is undisturbed, as far as can be seen here
    double clear = 0.0; ///< from here on lines are fitted: no tail that only a long line shows
    std::optional<PeakGroup> peak;
    double peakStatistic = 0.0;
    bool isBorder = false; ///< no event that is listed, yet lines end there
    bool bends = false; ///< sought as a bend: had anything been lost there, it would be known
    bool glows = false; ///< light stands there, too little to be listed
    bool standsOnTail = false; ///< where lines alone tell nothing, but with the tail they do

    std::optional<SideLine> left; ///< the fibre before it
    std::optional<SideLine> right; ///< the fibre behind it
    double loss_dB = std::numeric_limits<double>::quiet_NaN();
    double error_dB = std::numeric_limits<double>::quiet_NaN();

    /// Moves it to an index, with its dead zone of so many samples.
    void standAt(double index, double gap);

    /// Whether it is listed as a reflection.
    [[nodiscard]] bool reflects() const;

    /// Index of the foot of what is listed; light that is not may rise before it.
    [[nodiscard]] double foot() const;

    /// The loss over its standard error; 0 where it is not known.
    [[nodiscard]] double statistic() const;
};

/// The places of one fibre, in order, each measured between its neighbours.
class EventSites
{
public:
    /// The fibre is undisturbed from `first` and ends at `end`, both indices.
    EventSites(const FibreTrace& trace, double first, double end);

    [[nodiscard]] const std::vector<Site>& sites() const { return places; }

    /// Adds places; those that fall into the dead zone of one that is there are left out.
    void add(const std::vector<Site>& more);

    /// Fits the lines beside every place.
    void measure();

    /// Drops the places that a line through both sides explains, the weakest first: those whose
    /// loss is below loss_dB or below `significance` standard errors, and that reflect nothing. Of
    /// those below loss_dB the clear ones stay as borders, and so do plain bends and light that is
    /// too weak.
    void dropUnlikely(double loss_dB, double significance);

    /// Divides the fibre where it bends: fibres of different attenuation meet there, and no line
    /// runs over the place. What such lines had told of losses beside it is dropped or moved there.
    void divideAtBends(double loss_dB, double significance);

    /// Takes two neighbouring changes of level for one event where one explains both, a loss or a
    /// reflection, and measures all anew.
    void mergePairs();

    /// Adds the changes of level, by so many standard errors at least, that stand so close to a
    /// place that there is no room for a scan: two levels with the ramp of a pulse between them
    /// explain the fibre there, and one line does not.
    void findCloseChanges(double significance);

    /// Adds the losses that had been taken for the tail of brighter light in front of them.
    void findLossesInTails();

    /// Takes reflections with too little fibre between them to tell its level for one group, of
    /// which the loss is known together, and measures all anew.
    void joinCrowded();

    /// Moves the places to where the ramp of the pulse or the shape of a low reflection fits best,
    /// and measures all anew: until the lines beside them, which follow from the places, move them
    /// no more. By so many samples at most each time, for an event may draw a place in from further
    /// away.
    void refine(double reach);

    /// Measures the high reflections anew before which a place was found that their lines ran over;
    /// what rises less than leastHeight_dB does not count.
    void remeasurePeaks(double leastHeight_dB);

    /// Takes a reflection that turned out lower than this, dB, for none.
    void dropLowPeaks(double leastHeight_dB);

    /// Lists no reflection lower than this, dB: where none of a place is higher, its loss alone
    /// counts.
    void hideLowPeaks(double leastHeight_dB);

    /// Looks at every place without a reflection whether one stands on its ramp, by so many
    /// standard errors at least and higher than leastHeight_dB, and measures all anew. A lower one
    /// is not taken for a reflection, but it tells where the foot is.
    void findReflections(double leastHeight_dB, double significance);

    /// Once all places are known: lines that begin far behind a bright event are made longer, for
    /// they are told that far beyond themselves.
    void lengthenLines();

    /// Drops the changes of level that the tail of brighter light in front of them explains as
    /// well. False where there are none.
    bool dropTails();

    /// Once all places are known: the lines behind brighter light become those of the fibre alone,
    /// where a tail is plain. Tells anew what is not listed, see dropUnlikely().
    void takeTailsAway(double loss_dB, double significance);

    /// The undisturbed fibre between two places: from behind place k - 1 (the launch for 0) to the
    /// foot of place k (the end for one more than there are).
    [[nodiscard]] double fibreFrom(std::size_t k) const;
    [[nodiscard]] double fibreTo(std::size_t k) const;

    /// From where on lines through it are fitted.
    [[nodiscard]] double lineFrom(std::size_t k) const;

    /// The line through the fibre between them. Empty where there are too few samples.
    [[nodiscard]] std::optional<SideLine> fibre(std::size_t k) const;

private:
    /// Shortest stretch that tells a level, and fewest samples that tell a slope.
    static constexpr double kLevelSamples = 3.0;
    static constexpr std::size_t kFewestSlopeSamples = 8;

    [[nodiscard]] std::optional<SideLine> lineBehind(double from, double to) const;
    [[nodiscard]] double brightness_dB(const Site& site, double to) const;
    void measure(std::size_t k);
    void tellLoss(Site& site) const;
    [[nodiscard]] bool goesOn(double from, double at, double to) const;
    using Stretch = std::pair<double, double>;
    [[nodiscard]] double strayOf(double change_dB, double samples) const;
    [[nodiscard]] double bendOf(const SideLine& left, const SideLine& right,
                                double significance) const;
    [[nodiscard]] std::optional<double> bendBetween(double from, double to,
                                                    double significance) const;
    bool addBends(double significance, std::set<Stretch>& searched);

    /// Where two lines meet, and what they leave of their samples, dB squared.
    struct Bend
    {
        double at;
        double squares;
    };

    [[nodiscard]] std::optional<Bend> losslessBend(const Stretch& stretch, double place,
                                                   double step, double significance,
                                                   double most_dB) const;
    void moveToBend(Site& site, double significance, double mostLeft) const;
    void moveToBends(double loss_dB, double significance, double mostLeft);
    [[nodiscard]] bool isSwing(double behind, const Site& next) const;
    [[nodiscard]] bool risesAtOnce(double behind, double index) const;
    void dropRecoveries();

    [[nodiscard]] double foundationOf(const Site& site, double loss_dB, double significance) const;
    [[nodiscard]] std::optional<double> footOfBoth(const Site& first, const Site& second) const;
    [[nodiscard]] std::optional<Site> changeWithin(const Stretch& stretch,
                                                   double significance) const;
    [[nodiscard]] bool isRampWithin(const Stretch& stretch, Site& site) const;
    [[nodiscard]] std::optional<double> lossInTailOf(std::size_t k) const;
    [[nodiscard]] bool reachesOverPlace(std::size_t k) const;
    void refine(Site& site, double reach, double least, double most) const;
    void refinePeak(Site& site, double least, double most) const;
    [[nodiscard]] std::optional<SideLine> side(double from, double to) const;
    void findUsualSlope();
    void takeUsualSlope(double slope_dB);
    void learnUsualSlope();
    void findBorders(double loss_dB, double significance);

    enum class OnTail
    {
        Unknown,
        Event, ///< with the tail a change of level stands out
        Tail, ///< the tail alone explains it
    };

    [[nodiscard]] bool isBehindBright(std::size_t k) const;
    [[nodiscard]] UsualSlope usual() const;
    [[nodiscard]] std::vector<Stretch> piecesFrom(std::size_t k) const;
    [[nodiscard]] OnTail onTail(std::vector<Stretch> pieces, std::size_t piece) const;
    void straighten(std::size_t k, const std::optional<SideLine>& line, const Stretch& piece);

    const FibreTrace* fibreTrace;
    double first;
    double end;
    std::vector<Site> places;
    double usualSlope_dB = 0.0; ///< by the sample
    double slopeSpread_dB = 0.0; ///< by how much fibres differ from it
};

} // namespace otdr
