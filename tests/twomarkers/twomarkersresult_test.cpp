#include "tests/support/inlocale.h"
#include "tests/support/warnings.h"
#include "twomarkers/twomarkersresult.h"

#include <QTranslator>

#include <gmock/gmock.h>

#include <limits>

namespace {

using Waveform::TwoMarkersResult;

TEST(TwoMarkersResult, IsAllZeroToBeginWith)
{
    const TwoMarkersResult result;
    for (const double value : {result.xA, result.xB, result.yA, result.yB, result.reflection,
                               result.orl, result.length(), result.loss(), result.attenuation()}) {
        EXPECT_EQ(value, 0.0);
    }
    EXPECT_TRUE(result.lsaLine.isNull());
}

TEST(TwoMarkersResult, TakesItsValuesInTheOrderOfTheFields)
{
    const TwoMarkersResult result(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
    EXPECT_EQ(result.xA, 1.0);
    EXPECT_EQ(result.xB, 2.0);
    EXPECT_EQ(result.yA, 3.0);
    EXPECT_EQ(result.yB, 4.0);
    EXPECT_EQ(result.reflection, 5.0);
    EXPECT_EQ(result.orl, 6.0);
    EXPECT_TRUE(result.lsaLine.isNull());
}

TEST(TwoMarkersResult, IsToldWithTheMarkOfTheLocale)
{
    const testing_support::InLocale german(QLocale("de_DE"));
    const TwoMarkersResult result(1000.5, 12000.0, 30.0, 29.5, -40.25, 33.5);
    EXPECT_EQ(result.formatted(TwoMarkersResult::A), "1000,5 m");
    EXPECT_EQ(result.formatted(TwoMarkersResult::B), "12000,0 m");
    EXPECT_EQ(result.formatted(TwoMarkersResult::Loss), "0,50 dB");
    EXPECT_EQ(result.formatted(TwoMarkersResult::ORL), "33,50 dB");
    testing_support::expectWarning("Argument missing");
    EXPECT_TRUE(result.formatted().startsWith("A: 1000,5 m\nB: 12000 m\n"));
}

TEST(TwoMarkersResult, TellsLengthLossAndAttenuationOfAStretch)
{
    const TwoMarkersResult result(100.0, 1100.0, 40.0, 39.65, 0.0, 0.0);
    EXPECT_EQ(result.length(), 1000.0);
    EXPECT_NEAR(result.loss(), 0.35, 1e-12);
    EXPECT_NEAR(result.attenuation(), 0.35, 1e-12);
    EXPECT_EQ(result.leftX(), 100.0);
    EXPECT_EQ(result.rightX(), 1100.0);
    EXPECT_EQ(result.leftY(), 40.0);
    EXPECT_EQ(result.rightY(), 39.65);
}

TEST(TwoMarkersResult, IsTheSameWithTheMarkersSwapped)
{
    const TwoMarkersResult result(1100.0, 100.0, 39.65, 40.0, 0.0, 0.0);
    EXPECT_EQ(result.length(), 1000.0);
    EXPECT_NEAR(result.loss(), 0.35, 1e-12);
    EXPECT_NEAR(result.attenuation(), 0.35, 1e-12);
    EXPECT_EQ(result.leftX(), 100.0);
    EXPECT_EQ(result.rightX(), 1100.0);
    EXPECT_EQ(result.leftY(), 40.0);
    EXPECT_EQ(result.rightY(), 39.65);
}

TEST(TwoMarkersResult, HasNoAttenuationWithoutALength)
{
    const TwoMarkersResult result(500.0, 500.0, 40.0, 30.0, 0.0, 0.0);
    EXPECT_EQ(result.length(), 0.0);
    EXPECT_EQ(result.attenuation(), 0.0);
    EXPECT_EQ(result.leftX(), 500.0);
    EXPECT_EQ(result.rightX(), 500.0);
    EXPECT_EQ(result.leftY(), 30.0); // both are that of B
    EXPECT_EQ(result.rightY(), 30.0);
    EXPECT_EQ(result.loss(), 0.0);
}

TEST(TwoMarkersResult, LengthIsTheDifferenceInSinglePrecision)
{
    const TwoMarkersResult result(0.1, 50000.0 + 1.0 / 3.0, 0.0, 0.0, 0.0, 0.0);
    const double difference = 50000.0 + 1.0 / 3.0 - 0.1;
    EXPECT_EQ(result.length(), static_cast<double>(static_cast<float>(difference)));
    EXPECT_NE(result.length(), difference);
    // Not a difference of rounded places.
    const TwoMarkersResult near(50000.0, 50000.001, 0.0, 0.0, 0.0, 0.0);
    EXPECT_NEAR(near.length(), 0.001, 1e-9);
}

TEST(TwoMarkersResult, ShowsEachFieldWithItsDecimalsAndUnit)
{
    const TwoMarkersResult result(100.04, 1100.06, 40.0, 40.124, -45.678, 33.333);
    EXPECT_EQ(result.formatted(TwoMarkersResult::A), "100.0 m");
    EXPECT_EQ(result.formatted(TwoMarkersResult::B), "1100.1 m");
    EXPECT_EQ(result.formatted(TwoMarkersResult::Length), "1000.0 m");
    EXPECT_EQ(result.formatted(TwoMarkersResult::Loss), "-0.12 dB");
    EXPECT_EQ(result.formatted(TwoMarkersResult::Attenuation), "-0.124 dB/km");
    EXPECT_EQ(result.formatted(TwoMarkersResult::Reflection), "-45.68 dB");
    EXPECT_EQ(result.formatted(TwoMarkersResult::ORL), "33.33 dB");
    EXPECT_EQ(result.formatted(static_cast<TwoMarkersResult::Field>(7)), "");
    EXPECT_EQ(result.formatted(static_cast<TwoMarkersResult::Field>(-1)), "");
}

TEST(TwoMarkersResult, FieldsAreCountedInTheOrderOfTheirRows)
{
    using Result = TwoMarkersResult;
    const int fields[] = {Result::A,           Result::B,          Result::Length, Result::Loss,
                          Result::Attenuation, Result::Reflection, Result::ORL};
    EXPECT_THAT(fields, testing::ElementsAre(0, 1, 2, 3, 4, 5, 6));
}

TEST(TwoMarkersResult, ReflectionWantsALevelThatRises)
{
    const TwoMarkersResult falling(100.0, 1100.0, 40.0, 39.65, -45.0, 0.0);
    EXPECT_EQ(falling.formatted(TwoMarkersResult::Reflection), "-");
    const TwoMarkersResult level(100.0, 1100.0, 40.0, 40.0, -45.0, 0.0);
    EXPECT_EQ(level.formatted(TwoMarkersResult::Reflection), "-");
    const TwoMarkersResult swapped(1100.0, 100.0, 39.65, 40.0, -45.0, 0.0);
    EXPECT_EQ(swapped.formatted(TwoMarkersResult::Reflection), "-");
}

TEST(TwoMarkersResult, TextKeepsItsTemplateWithTheAttenuationTwice)
{
    testing_support::expectWarning("QString::arg: Argument missing");
    const TwoMarkersResult result(100.0, 1100.25, 40.0, 40.5, -45.5, 33.25);
    EXPECT_EQ(result.formatted(),
              "A: 100 m\nB: 1100.25 m\nL: 1000.25 m\nLoss: -0.5 dB\nAtt: -0.499875 dB/km\n"
              "Reflection: -0.499875 dB\nORL: -45.5\n");
}

TEST(TwoMarkersResult, TextShowsWhatCannotBeKnown)
{
    testing_support::expectWarning("QString::arg: Argument missing");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const TwoMarkersResult result(0.0, 2e6, 1.0, 1.0, nan, nan);
    EXPECT_EQ(result.formatted(),
              "A: 0 m\nB: 2e+06 m\nL: 2e+06 m\nLoss: 0 dB\nAtt: 0 dB/km\nReflection: 0 dB\n"
              "ORL: nan\n");
}

/// Puts the context before what it translates.
class ContextTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* sourceText, const char* /*disambiguation*/,
                      int /*n*/) const override
    {
        return QString("[%1]%2").arg(context, sourceText);
    }

    [[nodiscard]] bool isEmpty() const override { return false; }
};

TEST(TwoMarkersResult, UnitsAndTextAreTranslatedInTheirContexts)
{
    ContextTranslator translator;
    QCoreApplication::installTranslator(&translator);
    const TwoMarkersResult result(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
    EXPECT_EQ(result.formatted(TwoMarkersResult::A), "1.0[TwoMarkersResult] m");
    EXPECT_EQ(result.formatted(TwoMarkersResult::Attenuation), "-1000.000[TwoMarkersResult] dB/km");
    EXPECT_EQ(result.formatted(TwoMarkersResult::ORL), "6.00[TwoMarkersResult] dB");
    testing_support::expectWarning("QString::arg: Argument missing");
    EXPECT_TRUE(result.formatted().startsWith("[QObject]A: 1 m\n"));
    QCoreApplication::removeTranslator(&translator);
}

TEST(TwoMarkersResult, TravelsInSignals)
{
    qRegisterMetaType<TwoMarkersResult>("TwoMarkersResult");
    EXPECT_NE(QMetaType::type("TwoMarkersResult"), QMetaType::UnknownType);
    const QVariant carried = QVariant::fromValue(TwoMarkersResult(1.0, 2.0, 3.0, 4.0, 5.0, 6.0));
    EXPECT_EQ(carried.value<TwoMarkersResult>().orl, 6.0);
}

} // namespace
