// The card is pulled at every stage of a measurement with the real acquisition program, and plugged
// in again.

#include "tests/acquisition/faultyrun.h"

namespace {

using namespace testing_support; // the fixture

struct Stage
{
    const char* name;
    const char* signal; ///< of the model, by which the stage is known
    int nth; ///< of these signals
    bool fastest; ///< as fast as possible, for what lies between two messages
};

void PrintTo(const Stage& stage, std::ostream* out)
{
    *out << stage.name;
}

/// Pulls the card at the nth signal.
class Hand : public QObject
{
    Q_OBJECT

public:
    Hand(CardController* card, int nth)
        : card(card)
        , left(nth)
    {
    }

    [[nodiscard]] bool hasPulled() const { return left <= 0; }

public slots:

    void pull()
    {
        if (--left == 0) {
            card->unplug();
        }
    }

private:
    CardController* card;
    int left;
};

class CardPulled : public FaultyRealRun, public testing::WithParamInterface<Stage>
{
};

TEST_P(CardPulled, EndsTheRunOnceAndTheNextOneWorks)
{
    const Stage stage = GetParam();
    set("MeasParams", "wavelength", "all");
    set("MeasParams", "duration", 5);
    set("Simulation", "timeScale", stage.fastest ? 0.0 : 0.05);
    QSignalSpy lost(model.get(), SIGNAL(cardLost()));
    Hand hand(&card, stage.nth);
    QObject::connect(model.get(), stage.signal, &hand, SLOT(pull()));

    EXPECT_EQ(failureOfRun(), "") << "the loss of the card is told by itself";
    EXPECT_TRUE(hand.hasPulled());
    EXPECT_EQ(lost.size(), 1);

    card.plug();
    EXPECT_FALSE(model->supParams().moduleSerial.isEmpty());
    set("Simulation", "timeScale", 0);
    expectGoodRealRun();
    EXPECT_EQ(lost.size(), 1);
}

const char* const kTraceBegins = SIGNAL(measStarted());
const char* const kRefresh = SIGNAL(measured(QString, WfMeasParams));
const char* const kTraceEnds = SIGNAL(measFinished());
const char* const kAnalysisBegins = SIGNAL(analisisStarted());
const char* const kAnalysisEnds = SIGNAL(analisisFinished());

INSTANTIATE_TEST_SUITE_P(Stages, CardPulled,
                         testing::Values(Stage {"BeforeTheFirstRefresh", kTraceBegins, 1, false},
                                         Stage {"InTheFirstRefresh", kRefresh, 1, false},
                                         Stage {"AtALaterRefresh", kRefresh, 3, false},
                                         Stage {"AtTheEndOfATrace", kTraceEnds, 1, false},
                                         Stage {"InTheAnalysis", kAnalysisBegins, 1, false},
                                         Stage {"BetweenTheWavelengths", kAnalysisEnds, 1, false},
                                         Stage {"InTheSecondTrace", kTraceBegins, 2, false},
                                         Stage {"InTheLastAnalysis", kAnalysisBegins, 2, true}),
                         [](const testing::TestParamInfo<Stage>& info) {
                             return std::string(info.param.name);
                         });

class CardAway : public FaultyRealRun
{
};

TEST_F(CardAway, BeforeTheStartIsToldInsteadOfMeasuring)
{
    card.unplug();
    expectWarning("can not start \"check fiber\"");
    EXPECT_LT(model->start(0), 0);
    EXPECT_EQ(model->failure(), "There is no measurement card.");
    EXPECT_FALSE(model->running());
    EXPECT_EQ(stopped->size(), 1);
    EXPECT_FALSE(QFile::exists(AcquisitionDir::snapshot()));
    card.plug();
    expectGoodRealRun();
}

TEST_F(CardAway, BeforeTheFibreIsCheckedFailsTheStart)
{
    QSignalSpy lost(model.get(), SIGNAL(cardLost()));
    const auto pulled = QObject::connect(model.get(), qOverload<MeasModel*>(&MeasModel::started),
                                         [this] { card.unplug(); });
    expectWarning("can not start \"check fiber\"");
    EXPECT_LT(model->start(0), 0);
    EXPECT_EQ(model->failure(), "There is no measurement card.");
    EXPECT_FALSE(model->running());
    EXPECT_EQ(stopped->size(), 1);
    EXPECT_EQ(lost.size(), 1);
    QObject::disconnect(pulled);
    card.plug();
    expectGoodRealRun();
}

TEST_F(CardAway, AtTheEndOfARunIsNoLossOfTheRun)
{
    QSignalSpy lost(model.get(), SIGNAL(cardLost()));
    QObject::connect(model.get(), qOverload<MeasModel*>(&MeasModel::stopped),
                     [this] { card.unplug(); });
    EXPECT_EQ(failureOfRun(), "");
    EXPECT_GE(measured->size(), 1);
    EXPECT_LE(lost.size(), 1);
}

TEST_F(CardAway, ForAMomentOnlyEndsTheRunToo)
{
    set("MeasParams", "duration", 600);
    set("Simulation", "timeScale", 0.2);
    QSignalSpy lost(model.get(), SIGNAL(cardLost()));
    ASSERT_EQ(model->start(0), 0);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !measured->isEmpty(); }, 10000));
    for (int i = 0; i < 3; ++i) {
        card.unplug();
        card.plug();
    }
    ASSERT_TRUE(waitForStop());
    expectIdle();
    EXPECT_EQ(lost.size(), 1);
    EXPECT_FALSE(logged("cadr disconnected")) << "it was there at the end";
}

} // namespace

#include "cardpulled_test.moc"
