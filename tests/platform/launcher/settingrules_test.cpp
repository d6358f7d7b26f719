#include "platform/launcher/settingrules.h"

#include <gtest/gtest.h>

#include <limits>

using settingrules::canonical;
using settingrules::equal;
using settingrules::isAllowed;

TEST(SettingRules, AllowWhatTheTablesHold)
{
    for (const int seconds : {15, 30, 45, 60, 90, 120, 180, 300, 600, 1800, 0}) {
        EXPECT_TRUE(isAllowed("MeasParams/duration", seconds)) << seconds;
    }
    for (const int ns : {5, 10, 30, 100, 275, 1000, 5000, 10000, 20000}) {
        EXPECT_TRUE(isAllowed("MeasParams/pulse", ns)) << ns;
    }
    for (const int metres : {1000, 2500, 5000, 10000, 20000, 40000, 80000, 160000}) {
        EXPECT_TRUE(isAllowed("MeasParams/distance", metres)) << metres;
    }
    EXPECT_TRUE(isAllowed("MeasParams/wavelength", 1310));
    EXPECT_TRUE(isAllowed("MeasParams/wavelength", "1550"));
    EXPECT_TRUE(isAllowed("MeasParams/wavelength", "all"));
}

TEST(SettingRules, RefuseWhatTheTablesDoNotHold)
{
    EXPECT_FALSE(isAllowed("MeasParams/duration", 14));
    EXPECT_FALSE(isAllowed("MeasParams/duration", -15));
    EXPECT_FALSE(isAllowed("MeasParams/pulse", 0));
    EXPECT_FALSE(isAllowed("MeasParams/pulse", "all"));
    EXPECT_FALSE(isAllowed("MeasParams/wavelength", 1625));
    EXPECT_FALSE(isAllowed("MeasParams/wavelength", 1310.5));
    EXPECT_FALSE(isAllowed("MeasParams/wavelength", "ALL"));
    EXPECT_FALSE(isAllowed("AdvancedParams/MeasMode", 2));
    EXPECT_FALSE(isAllowed("MeasParams/pulse", QVariant()));
}

TEST(SettingRules, KeepIndexAndHelixInTheirRanges)
{
    EXPECT_TRUE(isAllowed("MeasParams/ior1310", 1.3));
    EXPECT_TRUE(isAllowed("MeasParams/ior1550", "1.7"));
    EXPECT_FALSE(isAllowed("MeasParams/ior1310", 1.2999));
    EXPECT_FALSE(isAllowed("MeasParams/ior1310", 1.7001));
    EXPECT_FALSE(isAllowed("MeasParams/ior1310", std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(isAllowed("MeasParams/ior1310", "glass"));
    EXPECT_TRUE(isAllowed("MeasParams/helix", 0));
    EXPECT_TRUE(isAllowed("MeasParams/helix", 25.0));
    EXPECT_FALSE(isAllowed("MeasParams/helix", -0.1));
    EXPECT_FALSE(isAllowed("MeasParams/helix", std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(isAllowed("AdvancedParams/reflIndex", 0));
    EXPECT_FALSE(isAllowed("AdvancedParams/reflIndex", 1.5));
    EXPECT_TRUE(isAllowed("AdvancedParams/reflIndex", 1));
}

TEST(SettingRules, TakeAnythingWhereThereIsNoRule)
{
    EXPECT_TRUE(isAllowed("CardInfo/HardwareRevision", "3.0"));
    EXPECT_TRUE(isAllowed("Simulation/fibre", ""));
}

TEST(SettingRules, AnswerTheTablesOwnValueForAText)
{
    EXPECT_EQ(canonical("MeasParams/pulse", "100"), QVariant(100));
    EXPECT_EQ(canonical("MeasParams/pulse", "100").userType(), int(QMetaType::Int));
    EXPECT_EQ(canonical("MeasParams/pulse", "100.0").userType(), int(QMetaType::Int));
    EXPECT_EQ(canonical("MeasParams/wavelength", "1549.5"), QVariant("1549.5"));
    EXPECT_EQ(canonical("MeasParams/helix", "2.50").userType(), int(QMetaType::Double));
    EXPECT_EQ(canonical("CardInfo/HardwareRevision", "3.0"), QVariant("3.0"));
}

TEST(SettingRules, CompareNumbersAsNumbersAndTextsAsTexts)
{
    EXPECT_TRUE(equal(100, "100"));
    EXPECT_TRUE(equal(0.1, "0.10"));
    EXPECT_FALSE(equal(100, "all"));
    EXPECT_FALSE(equal("3", "3.0"));
    EXPECT_TRUE(equal(QVariant(), QVariant()));
    EXPECT_FALSE(equal(QVariant(), 0));
    EXPECT_FALSE(equal(0, "all"));
}

TEST(SettingRules, HaveDefaultsThatTheyAllow)
{
    const QVariantMap defaults = settingrules::defaults("zuotdr");
    ASSERT_FALSE(defaults.isEmpty());
    for (auto it = defaults.constBegin(); it != defaults.constEnd(); ++it) {
        EXPECT_TRUE(isAllowed(it.key(), it.value())) << qPrintable(it.key());
    }
    EXPECT_TRUE(settingrules::defaults("another").isEmpty());
}
