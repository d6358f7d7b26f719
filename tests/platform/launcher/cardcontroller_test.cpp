#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/controllercommand.h"
#include "platform/launcher/dataproxy.h"
#include "tests/platform/launcher/confighome.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>

namespace {

int checkFiber(CardController& card)
{
    ControllerCommand command("check fiber", false);
    return card.doCommand(command);
}

} // namespace

TEST(CardController, TakesTheFibreCheck)
{
    CardController card;
    EXPECT_FALSE(card.noCard());
    EXPECT_EQ(checkFiber(card), 0);
}

TEST(CardController, AnswersQueriesInTheFormOfTheCard)
{
    CardController card;
    EXPECT_EQ(card.doCommandGetUpdate("version"), "MCU 1.4\nFPGA 2.7");
    EXPECT_FALSE(card.doCommandGetUpdate("scale").isEmpty());
    EXPECT_FALSE(card.doCommandGetUpdate("dzbox").isEmpty());
    EXPECT_EQ(card.doCommandGetUpdate("no such"), "");
}

TEST(CardController, GivesAnAnswerOnlyWhereOneIsWanted)
{
    CardController card;
    ControllerCommand quiet("version", false);
    EXPECT_EQ(card.doCommand(quiet), 0);
    EXPECT_EQ(quiet.update(), "");
    ControllerCommand asking("version", true);
    EXPECT_EQ(card.doCommand(asking), 0);
    EXPECT_NE(asking.update(), "");
}

TEST(CardController, RefusesUnknownCommandsAndThoseItWasToldToRefuse)
{
    CardController card;
    ControllerCommand unknown("make tea", false);
    EXPECT_EQ(card.doCommand(unknown), CardController::UnknownCommand);

    card.setRefusal("check fiber", -7);
    EXPECT_EQ(checkFiber(card), -7);
    EXPECT_NE(card.doCommandGetUpdate("version"), "");
    card.setRefusal("version", -1);
    EXPECT_EQ(card.doCommandGetUpdate("version"), "");
    card.setRefusal("check fiber", 0);
    EXPECT_EQ(checkFiber(card), 0);
}

TEST(CardController, AnnouncesComingAndGoingOnceEach)
{
    CardController card;
    const QSignalSpy connected(&card, SIGNAL(connected(CardController*)));
    const QSignalSpy disconnected(&card, SIGNAL(disconnected(CardController*)));
    card.plug();
    EXPECT_EQ(connected.count(), 0);
    card.unplug();
    card.unplug();
    EXPECT_EQ(disconnected.count(), 1);
    EXPECT_TRUE(card.noCard());
    card.plug();
    card.plug();
    EXPECT_EQ(connected.count(), 1);
    EXPECT_FALSE(card.noCard());
    EXPECT_EQ(connected.at(0).at(0).value<CardController*>(), &card);
}

TEST(CardController, HasNoIdentityAndTakesNothingWithoutACard)
{
    CardController card;
    EXPECT_EQ(card.name(), "otdr");
    EXPECT_EQ(card.revision(), "3.0");
    EXPECT_NE(card.serial(), "");
    card.unplug();
    EXPECT_EQ(card.revision(), "");
    EXPECT_EQ(card.serial(), "");
    EXPECT_EQ(checkFiber(card), CardController::NoCard);
    EXPECT_EQ(card.doCommandGetUpdate("version"), "");
    card.plug();
    card.setRevision("2.5");
    EXPECT_EQ(card.revision(), "2.5");
}

TEST(CardController, KeepsObserversByChannelInOrder)
{
    CardController card;
    DataProxy first;
    DataProxy second;
    auto passing = std::make_unique<DataProxy>();
    card.registerProxy("I", &first);
    card.registerProxy("I", passing.get());
    card.registerProxy("I", &second);
    card.registerProxy("I", &first);
    card.registerProxy("V", &first);
    card.registerProxy("I", nullptr);
    EXPECT_EQ(card.dataProxies("I"), (QList<DataProxy*> {&first, passing.get(), &second}));
    EXPECT_EQ(card.dataProxies("V"), QList<DataProxy*> {&first});
    EXPECT_TRUE(card.dataProxies("X").isEmpty());

    passing.reset();
    EXPECT_EQ(card.dataProxies("I"), (QList<DataProxy*> {&first, &second}));
}

TEST(DataProxy, HandsTheMapItselfToItsReceivers)
{
    DataProxy proxy;
    QString seen;
    QObject::connect(&proxy, &DataProxy::updated, &proxy,
                     [&seen](QVariantMap& map, const QString& channel) {
                         seen = channel;
                         map.insert("seen", true);
                     });
    QVariantMap map {{"RT", 3}};
    proxy.emitUpdated(map, "I");
    EXPECT_EQ(seen, "I");
    EXPECT_TRUE(map.value("seen").toBool());
}

TEST(CardController, TellsTheConfigurationOfTheNextMeasurement)
{
    const testing_support::ConfigHome home;
    const CardController card;
    const QVariantMap fresh = card.config();
    EXPECT_EQ(fresh.keys(),
              (QStringList {"distance", "duration", "helix", "ior", "pulse", "rbs", "wavelength"}));
    EXPECT_EQ(fresh.value("pulse").toInt(), 100);
    EXPECT_EQ(fresh.value("duration").toInt(), 15);
    EXPECT_EQ(fresh.value("distance").toDouble(), 10000.0);
    EXPECT_DOUBLE_EQ(fresh.value("ior").toDouble(), 1.4677);
    EXPECT_DOUBLE_EQ(fresh.value("rbs").toDouble(), -66.3);

    ZuConfig("zuotdr", "MeasParams", "wavelength").store(1550);
    ZuConfig("zuotdr", "MeasParams", "ior1550").store(1.4685);
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "pulse", 275);
    EXPECT_EQ(card.config().value("wavelength").toInt(), 1550);
    EXPECT_DOUBLE_EQ(card.config().value("ior").toDouble(), 1.4685);
    EXPECT_EQ(card.config().value("pulse").toInt(), 275);

    ZuConfig("zuotdr", "MeasParams", "wavelength").store("all");
    EXPECT_EQ(card.config().value("wavelength").toString(), "all");
    EXPECT_DOUBLE_EQ(card.config().value("ior").toDouble(), 1.4677);
}
