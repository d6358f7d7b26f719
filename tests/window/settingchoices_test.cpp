#include "tests/support/inlocale.h"
#include "window/settingchoices.h"

#include <QCoreApplication>
#include <QTranslator>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace {

using namespace Waveform;

QList<QVariant> numbers(std::initializer_list<int> list)
{
    QList<QVariant> values;
    for (const int value : list) {
        values << value;
    }
    return values;
}

TEST(SettingChoices, TimeEndsWithRealtime)
{
    const SettingChoices time = timeChoices();
    EXPECT_EQ(time.title, "Time");
    EXPECT_EQ(time.key, "duration");
    EXPECT_EQ(time.labels,
              QStringList({"15 s", "30 s", "45 s", "60 s", "90 s", "2 min", "3 min", "5 min",
                           "10 min", "30 min", QString(QChar(0x221E))}));
    EXPECT_EQ(time.values, numbers({15, 30, 45, 60, 90, 120, 180, 300, 600, 1800, 0}));
}

TEST(SettingChoices, PulseHasTheLongestOneWhereTheCardHas)
{
    const QString micro = QString(QChar(0xB5)) + "s";
    const QStringList labels {"5 ns",   "10 ns",      "30 ns",      "100 ns",
                              "275 ns", "1 " + micro, "5 " + micro, "10 " + micro};
    const SettingChoices older = pulseChoices(false);
    EXPECT_EQ(older.title, "Pulse");
    EXPECT_EQ(older.key, "pulse");
    EXPECT_EQ(older.labels, labels);
    EXPECT_EQ(older.values, numbers({5, 10, 30, 100, 275, 1000, 5000, 10000}));
    const SettingChoices newer = pulseChoices(true);
    EXPECT_EQ(newer.labels, labels + QStringList("20 " + micro));
    EXPECT_EQ(newer.values, older.values + numbers({20000}));
}

TEST(SettingChoices, DistanceHasTheMarkOfTheLocaleOnTheScreenAlone)
{
    const testing_support::InLocale german(QLocale("de_DE"));
    const SettingChoices distance = distanceChoices();
    EXPECT_EQ(distance.labels.value(1), "2,5 km");
    EXPECT_EQ(distance.values, numbers({1000, 2500, 5000, 10000, 20000, 40000, 80000, 160000}));
}

TEST(SettingChoices, DistanceIsShownInKilometresAndStoredInMetres)
{
    const SettingChoices distance = distanceChoices();
    EXPECT_EQ(distance.title, "Distance");
    EXPECT_EQ(distance.key, "distance");
    EXPECT_EQ(
        distance.labels,
        QStringList({"1 km", "2.5 km", "5 km", "10 km", "20 km", "40 km", "80 km", "160 km"}));
    EXPECT_EQ(distance.values, numbers({1000, 2500, 5000, 10000, 20000, 40000, 80000, 160000}));
}

TEST(SettingChoices, WavelengthsCanBeMeasuredBoth)
{
    const SettingChoices wavelength = wavelengthChoices();
    EXPECT_EQ(wavelength.title, "Wavelength");
    EXPECT_EQ(wavelength.key, "wavelength");
    EXPECT_EQ(wavelength.labels, QStringList({"1310 nm", "1550 nm", "All"}));
    EXPECT_EQ(wavelength.values, QList<QVariant>({1310, 1550, "all"}));
}

/// Names the context of each text.
class Contexts : public QTranslator
{
public:
    Contexts() { QCoreApplication::installTranslator(this); }

    ~Contexts() override { QCoreApplication::removeTranslator(this); }

    QString translate(const char* context, const char* sourceText, const char* /*disambiguation*/,
                      int /*n*/) const override
    {
        return QString("%1|%2").arg(context, QString::fromUtf8(sourceText));
    }

    [[nodiscard]] bool isEmpty() const override { return false; }
};

TEST(SettingChoices, UnitsAreTranslatedInTheirContextAndInfinityIsNot)
{
    const Contexts translator;
    EXPECT_EQ(t("15", "s"), "15 Units|s");
    EXPECT_EQ(timeChoices().labels.first(), "15 Units|s");
    EXPECT_EQ(timeChoices().labels.last(), QString(QChar(0x221E)));
    EXPECT_EQ(longestPulseLabel(), QString("20 Units|") + QChar(0xB5) + "s");
    EXPECT_EQ(wavelengthChoices().labels.last(), "Waveform::Window|All");
    EXPECT_EQ(timeChoices().title, "Waveform::Window|Time");
}

TEST(SettingChoices, RevisionAsTextIsComparedAsText)
{
    EXPECT_TRUE(startsWithLongestPulse("3.0"));
    EXPECT_TRUE(startsWithLongestPulse("4"));
    EXPECT_FALSE(startsWithLongestPulse("2.5"));
    EXPECT_FALSE(startsWithLongestPulse("10"));
    EXPECT_FALSE(startsWithLongestPulse("3"));
    EXPECT_FALSE(startsWithLongestPulse(QString()));
}

TEST(SettingChoices, ValuesThatAreNotOfferedHaveTheUnitsOfThoseThatAre)
{
    const testing_support::InLocale inGermany {QLocale(QLocale::German)};
    EXPECT_EQ(foreignLabel("duration", 20), "20 s");
    EXPECT_EQ(foreignLabel("pulse", 7), "7 ns");
    EXPECT_EQ(foreignLabel("pulse", "2500"), QString("2,5 ") + QChar(0xB5) + "s");
    EXPECT_EQ(foreignLabel("pulse", kLongestPulse_ns), longestPulseLabel());
    EXPECT_EQ(foreignLabel("distance", 750.0), "0,75 km");
    EXPECT_EQ(foreignLabel("distance", 75000), "75 km");
    EXPECT_EQ(foreignLabel("wavelength", 1549.5), "1549,5 nm");
    EXPECT_EQ(foreignLabel("wavelength", "both"), "both");
    EXPECT_EQ(foreignLabel("pulse", ""), "");
}

TEST(SettingChoices, RevisionAsNumberIsRounded)
{
    EXPECT_TRUE(hasLongestPulse(2.5));
    EXPECT_TRUE(hasLongestPulse(3.0));
    EXPECT_TRUE(hasLongestPulse(10.0));
    EXPECT_FALSE(hasLongestPulse(2.49));
    EXPECT_FALSE(hasLongestPulse(2.0));
    EXPECT_FALSE(hasLongestPulse(0.0));
    EXPECT_FALSE(hasLongestPulse(-3.0));
    EXPECT_TRUE(hasLongestPulse(2.4999999999)) << "single precision decides";
}

TEST(SettingChoices, StandsRevisionsThatAreNone)
{
    EXPECT_FALSE(hasLongestPulse(std::nan("")));
    EXPECT_TRUE(hasLongestPulse(std::numeric_limits<double>::infinity()));
    EXPECT_TRUE(hasLongestPulse(1e300));
    EXPECT_FALSE(hasLongestPulse(-1e300));
}

} // namespace
