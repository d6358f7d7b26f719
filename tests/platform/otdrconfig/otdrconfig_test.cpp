#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/zuconfigmodel.h"
#include "platform/otdrconfig/otdrconfig.h"
#include "tests/platform/launcher/confighome.h"

#include <QDateTime>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

class OtdrConfig : public testing::Test
{
protected:
    ~OtdrConfig() override { config->freeLater(); }

    QString name(QString scheme, int index = 7, bool withUnits = true)
    {
        QString built;
        OTDR::constructReflName(built, scheme, params, index, config, withUnits);
        return built;
    }

    testing_support::ConfigHome home;
    CardController card;
    ZuConfigModel* const config = ZuConfigModel::instance(&card, "zuotdr");
    WfMeasParams params;
};

} // namespace

TEST_F(OtdrConfig, BuildsTheNameOfTheScheme)
{
    params.wavelength = 1550;
    params.pulse = 275;
    params.distance = 2500.0;
    EXPECT_EQ(name("trace_wavelength_index"), "trace_1550nm_0007");
    EXPECT_EQ(name("pulse_distance"), "275ns_2500m");
    EXPECT_EQ(name("index_trace"), "0007_trace");
    EXPECT_EQ(name("site7_wavelength"), "site7_1550nm");
    EXPECT_EQ(name("wavelength_pulse_distance_index", 12345, false), "1550_275_2500_12345");
}

TEST_F(OtdrConfig, LeavesOutAnUnknownWavelengthAndEmptyWords)
{
    params.wavelength = 0;
    EXPECT_EQ(name("trace_wavelength_index"), "trace_0007");
    EXPECT_EQ(name("__trace__index_"), "trace_0007");
}

TEST_F(OtdrConfig, PutsTheDateAndTheTimeOfNow)
{
    const QDateTime before = QDateTime::currentDateTime();
    const QDateTime named = QDateTime::fromString(name("date_time"), "yyyyMMdd_HHmmss");
    ASSERT_TRUE(named.isValid());
    EXPECT_LE(qAbs(before.secsTo(named)), 2);
}

TEST_F(OtdrConfig, TakesSchemeAndIndexFromTheConfiguration)
{
    EXPECT_EQ(name("", -1), "trace_1310nm_0001");
    config->setting("reflNameScheme", "AdvancedParams")->tryChange(QStringLiteral("site_index"));
    OTDR::incrementReflIndex(config, true);
    EXPECT_EQ(name("", -1), "site_0002");

    QString scheme;
    QString built;
    OTDR::constructReflName(built, scheme, params, -1, config, true);
    EXPECT_EQ(scheme, "site_index"); // the caller sees which one was used
}

TEST_F(OtdrConfig, HasDefaultsWithoutAConfiguration)
{
    QString scheme;
    QString built;
    OTDR::constructReflName(built, scheme, params, -1, nullptr, true);
    EXPECT_EQ(built, "trace_1310nm_0001");
    OTDR::incrementReflIndex(nullptr, true);
    OTDR::updateCardInfoConfig(&card, nullptr);
    OTDR::updateCardInfoConfig(nullptr, config);
}

TEST_F(OtdrConfig, AdvancesTheStoredIndex)
{
    OTDR::incrementReflIndex(config, true);
    OTDR::incrementReflIndex(config, true);
    EXPECT_EQ(ZuConfig("zuotdr", "AdvancedParams", "reflIndex").value().toInt(), 3);
}

TEST_F(OtdrConfig, WrapsTheIndexWhereItWouldGetTooWide)
{
    ZuSetting* index = config->setting("reflIndex", "AdvancedParams");
    index->tryChange(9998);
    OTDR::incrementReflIndex(config, true);
    EXPECT_EQ(index->value().toInt(), 9999);
    OTDR::incrementReflIndex(config, true);
    EXPECT_EQ(index->value().toInt(), 1);
    index->tryChange(9999);
    OTDR::incrementReflIndex(config, false);
    EXPECT_EQ(index->value().toInt(), 10000);
}

TEST_F(OtdrConfig, StandsAStoredIndexThatIsNone)
{
    ZuConfig("zuotdr", "AdvancedParams", "reflIndex").store("many");
    EXPECT_EQ(name("index", -1), "0001");
    ZuConfig("zuotdr", "AdvancedParams", "reflIndex").store("-4");
    EXPECT_EQ(name("index", -1), "0001");
    ZuConfig("zuotdr", "AdvancedParams", "reflIndex").store("2147483647");
    OTDR::incrementReflIndex(config, false);
    EXPECT_EQ(ZuConfig("zuotdr", "AdvancedParams", "reflIndex").value().toInt(), 1);
}

TEST_F(OtdrConfig, WritesTheIdentityOfTheCard)
{
    ZuSetting* revision = config->setting("HardwareRevision", "CardInfo");
    const QSignalSpy changed(revision, SIGNAL(changed(double)));
    OTDR::updateCardInfoConfig(&card, config);
    EXPECT_EQ(revision->value().toString(), "3.0");
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toDouble(), 3.0);
    EXPECT_EQ(config->value("CardInfo", "Serial").toString(), card.serial());
    EXPECT_EQ(config->value("CardInfo", "Name").toString(), "otdr");

    card.setRevision("2.5");
    OTDR::updateCardInfoConfig(&card, config);
    EXPECT_EQ(revision->value().toString(), "2.5");
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(OtdrConfig, KeepsTheLastCardsIdentityWithoutACard)
{
    OTDR::updateCardInfoConfig(&card, config);
    card.unplug();
    OTDR::updateCardInfoConfig(&card, config);
    EXPECT_EQ(config->value("CardInfo", "HardwareRevision").toString(), "3.0");
}
