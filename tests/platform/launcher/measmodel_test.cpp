#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/measmodel.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

/// A model whose parts can be called, and which notes what came to it.
class OpenModel : public MeasModel
{
public:
    explicit OpenModel(CardController* card)
        : MeasModel(card)
    {
    }

    using CardModel::cardDisconnected;
    using MeasModel::setFailure;
    using MeasModel::updated;

    QVariantMap parsed;
    int inits = 0;

protected:
    void doParse(QVariantMap& map) override { parsed = map; }

    void doInit() override { ++inits; }
};

/// A model whose work goes on for a while after it was asked to stop, as a child process does.
class SlowModel : public MeasModel
{
public:
    explicit SlowModel(CardController* card)
        : MeasModel(card)
    {
    }

    [[nodiscard]] bool running() const override { return working; }

    int start(unsigned int /*mode*/) override
    {
        working = true;
        started("");
        return 0;
    }

    int stop(const QString& /*reason*/) override
    {
        ++stops;
        return 0;
    }

    void end()
    {
        working = false;
        stopped("");
        cardDisconnected();
    }

    bool working = false;
    int stops = 0;
};

} // namespace

TEST(MeasModel, AnnouncesOnlyRealChanges)
{
    CardController card;
    OpenModel model(&card);
    const QSignalSpy started(&model, SIGNAL(started(MeasModel*)));
    const QSignalSpy stopped(&model, SIGNAL(stopped(MeasModel*)));
    model.stopped("");
    EXPECT_EQ(stopped.count(), 0);
    model.started("");
    model.started("");
    EXPECT_EQ(started.count(), 1);
    EXPECT_TRUE(model.running());
    model.stopped("");
    model.stopped("");
    model.stopped("");
    EXPECT_EQ(stopped.count(), 1);
    EXPECT_FALSE(model.running());
    model.started("");
    EXPECT_EQ(started.count(), 2);
    EXPECT_EQ(started.at(0).at(0).value<MeasModel*>(), &model);
}

TEST(MeasModel, HasChangedItsStateBeforeItSaysSo)
{
    OpenModel model(nullptr);
    bool runningAtStart = false;
    bool runningAtStop = true;
    QObject::connect(&model, qOverload<MeasModel*>(&MeasModel::started), &model,
                     [&](MeasModel* one) { runningAtStart = one->running(); });
    QObject::connect(&model, qOverload<MeasModel*>(&MeasModel::stopped), &model,
                     [&](MeasModel* one) { runningAtStop = one->running(); });
    EXPECT_EQ(model.start(0), 0);
    EXPECT_EQ(model.stop(""), 0);
    EXPECT_TRUE(runningAtStart);
    EXPECT_FALSE(runningAtStop);
}

TEST(MeasModel, KeepsTheSecondsMeasuredOfTheTrace)
{
    OpenModel model(nullptr);
    EXPECT_EQ(model.duration(), 0);
    model.started("");
    QVariantMap tick {{"RT", "12"}, {"ET", "3"}};
    model.updated(tick);
    EXPECT_EQ(model.duration(), 3);
    QVariantMap without {{"RT", "11"}};
    model.updated(without, "");
    EXPECT_EQ(model.duration(), 3);
    model.started(""); // the same run
    EXPECT_EQ(model.duration(), 3);
    model.stopped("");
    EXPECT_EQ(model.duration(), 3);
    model.started("");
    EXPECT_EQ(model.duration(), 0);
}

TEST(MeasModel, StandsAnyTextAsElapsedTime)
{
    OpenModel model(nullptr);
    const std::pair<QVariant, int> cases[] = {{"4.7", 4},      {"-3", 0},      {"nan", 0},
                                              {"words", 0},    {"inf", 0},     {7, 7},
                                              {"1e99", 86400}, {QVariant(), 0}};
    for (const auto& [value, seconds] : cases) {
        QVariantMap tick {{"ET", value}};
        model.updated(tick);
        EXPECT_EQ(model.duration(), seconds) << qPrintable(value.toString());
    }
}

TEST(MeasModel, LetsASubclassParseBeforeItAnnouncesRunningValues)
{
    OpenModel model(nullptr);
    QVariantMap seen;
    QObject::connect(&model, &MeasModel::refreshed, &model, [&] { seen = model.parsed; });
    QVariantMap tick {{"RT", 1}};
    model.updated(tick, "I");
    EXPECT_EQ(seen, tick);
}

TEST(MeasModel, ParsesAConfigurationThatTheCardAnnounces)
{
    CardController card;
    OpenModel model(&card);
    ASSERT_TRUE(QObject::connect(
        &card, SIGNAL(configUpdated(QVariantMap&)), &model, SLOT(configUpdated(QVariantMap&))));
    QVariantMap map {{"MeasParams/pulse", 5}};
    card.updateConfig(map);
    EXPECT_EQ(model.parsed, map);
}

TEST(MeasModel, IsInitialisedOnce)
{
    OpenModel model(nullptr);
    model.init();
    model.init();
    EXPECT_EQ(model.inits, 1);
}

TEST(MeasModel, ForgetsAFailureWhenTheNextRunBegins)
{
    OpenModel model(nullptr);
    model.setFailure("no light");
    EXPECT_EQ(model.failure(), "no light");
    model.started("");
    EXPECT_EQ(model.failure(), "");
    model.setFailure("no fibre");
    model.started("");
    EXPECT_EQ(model.failure(), "no fibre");
}

TEST(MeasModel, EndsTheRunWhenTheCardIsUnpluggedAndSaysSo)
{
    CardController card;
    OpenModel model(&card);
    const QSignalSpy stopped(&model, SIGNAL(stopped(MeasModel*)));
    const QSignalSpy lost(&model, SIGNAL(cardLost()));
    card.unplug();
    EXPECT_EQ(lost.count(), 0); // nothing was under way
    card.plug();
    model.start(0);
    card.unplug();
    EXPECT_EQ(stopped.count(), 1);
    EXPECT_EQ(lost.count(), 1);
}

TEST(MeasModel, SaysOnceForARunThatTheCardWent)
{
    CardController card;
    SlowModel model(&card);
    const QSignalSpy lost(&model, SIGNAL(cardLost()));
    model.start(0);
    card.unplug();
    EXPECT_EQ(model.stops, 1);
    EXPECT_EQ(lost.count(), 1);
    model.end(); // the child has ended and the model says it again
    EXPECT_EQ(lost.count(), 1);
    card.plug();
    model.start(0);
    card.unplug();
    EXPECT_EQ(lost.count(), 2);
}

TEST(CardModel, KnowsItsCardAsLongAsThereIsOne)
{
    auto* card = new CardController;
    OpenModel model(card);
    EXPECT_EQ(model.cardController(), card);
    delete card;
    EXPECT_EQ(model.cardController(), nullptr);
}
