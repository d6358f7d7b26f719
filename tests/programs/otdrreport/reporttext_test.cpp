#include "programs/otdrreport/reporttext.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using otdrreport::printable;
using otdrreport::shown;

TEST(ReportText, ControlsAndDirectionMarksBecomeBlanks)
{
    EXPECT_EQ(printable(std::string("a\r\n\tb\x01\x7f\x85 c\0d", 12)), "a b c d");
    EXPECT_EQ(printable(QString("sor") + QChar(0x202e) + "lmth."), "sor lmth.");
    EXPECT_EQ(printable(std::string("  \n ")), "");
}

TEST(ReportText, OtherLettersStay)
{
    EXPECT_EQ(printable(std::string("Stra\xdf"
                                    "e")),
              QString("Stra") + QChar(0xdf) + "e");
    const QString rare = QString::fromUcs4(U"\U0001f30d x"); // two code units, one character
    EXPECT_EQ(printable(rare), rare);
    EXPECT_EQ(printable(QString("a") + QChar(0xd83c)), QString("a") + QChar(0xfffd))
        << "half a pair";
}

TEST(ReportText, NumbersOfFiveDigitsAndMoreAreGrouped)
{
    const QString thin(QChar(0x202f));
    EXPECT_EQ(shown(1234.56, 1), "1234.6");
    EXPECT_EQ(shown(12345.0, 0), "12" + thin + "345");
    EXPECT_EQ(shown(1234567.8, 1), "1" + thin + "234" + thin + "567.8");
}

TEST(ReportText, MinusIsAMinusAndZeroHasNone)
{
    EXPECT_EQ(shown(-14.7, 1), QString(QChar(0x2212)) + "14.7");
    EXPECT_EQ(shown(-0.0004, 3), "0.000");
}

TEST(ReportText, UnknownIsADashAndNeverZero)
{
    EXPECT_EQ(shown(std::numeric_limits<double>::quiet_NaN(), 3), otdrreport::dash());
    EXPECT_EQ(shown(std::numeric_limits<double>::infinity(), 3), otdrreport::dash());
    EXPECT_EQ(otdrreport::dash(), QString(QChar(0x2013)));
}

} // namespace
