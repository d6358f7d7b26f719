#include "platform/otdr/screennumber.h"
#include "tests/support/inlocale.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using testing_support::InLocale;

const QLocale kRussian("ru_RU");
const QLocale kEnglish("en_US");

TEST(ScreenNumber, HasTheDecimalMarkOfTheLocale)
{
    EXPECT_EQ(screennumber::fixed(12.5, 2), "12.50");
    EXPECT_EQ(screennumber::general(0.25), "0.25");
    EXPECT_EQ(screennumber::fromCode("2.5"), "2.5");
    const InLocale russian(kRussian);
    EXPECT_EQ(screennumber::fixed(12.5, 2), "12,50");
    EXPECT_EQ(screennumber::general(0.25), "0,25");
    EXPECT_EQ(screennumber::fromCode("2.5"), "2,5");
}

TEST(ScreenNumber, IsNeverGrouped)
{
    for (const QLocale& locale : {QLocale::c(), kEnglish, kRussian, QLocale("de_DE")}) {
        const InLocale here(locale);
        EXPECT_EQ(screennumber::fixed(160000.0, 0), "160000") << qPrintable(locale.name());
        EXPECT_EQ(screennumber::general(20000.0), "20000") << qPrintable(locale.name());
        EXPECT_EQ(screennumber::locale().toString(20000), "20000") << qPrintable(locale.name());
    }
}

/// The numbers of before, which the texts of the application were made with.
TEST(ScreenNumber, IsThatOfTheCodeInEnglish)
{
    const double infinite = std::numeric_limits<double>::infinity();
    for (const QLocale& locale : {QLocale::c(), kEnglish}) {
        const InLocale here(locale);
        for (const double value :
             {0.0, -0.0, -0.004, 1.005, -43.125, 1e-7, 123456.789, 1e7, 1e22}) {
            EXPECT_EQ(screennumber::fixed(value, 2), QString::number(value, 'f', 2)) << value;
            EXPECT_EQ(screennumber::general(value), QString("%1").arg(value)) << value;
        }
    }
    EXPECT_EQ(screennumber::fixed(infinite, 2), QString::number(infinite, 'f', 2));
}

} // namespace
