#include "programs/otdrreport/axisticks.h"

#include <QStringList>

#include <gmock/gmock.h>

#include <limits>

namespace {

using otdrreport::AxisTick;
using otdrreport::axisTicks;

QStringList labels(const QVector<AxisTick>& ticks)
{
    QStringList list;
    for (const AxisTick& tick : ticks) {
        list << tick.label;
    }
    return list;
}

TEST(AxisTicks, StandAtRoundValuesInTheUnitOfTheAxis)
{
    const auto ticks = axisTicks(-500.0, 20'500.0, 5, 1000.0);
    EXPECT_EQ(labels(ticks), QStringList({"0", "5", "10", "15", "20"}));
    EXPECT_DOUBLE_EQ(ticks[1].value, 5000.0);
}

TEST(AxisTicks, LabelsHaveTheDecimalsThatTellThemApart)
{
    EXPECT_EQ(labels(axisTicks(0.0, 2000.0, 5, 1000.0)),
              QStringList({"0.0", "0.5", "1.0", "1.5", "2.0"}));
    EXPECT_EQ(
        labels(axisTicks(-10.0, 10.0, 4, 1.0)),
        QStringList({QString(QChar(0x2212)) + "10", QString(QChar(0x2212)) + "5", "0", "5", "10"}));
}

TEST(AxisTicks, AxisWithoutLengthHasNone)
{
    EXPECT_TRUE(axisTicks(5.0, 5.0, 5, 1.0).isEmpty());
    EXPECT_TRUE(axisTicks(5.0, 1.0, 5, 1.0).isEmpty());
    EXPECT_TRUE(axisTicks(0.0, std::numeric_limits<double>::infinity(), 5, 1.0).isEmpty());
}

} // namespace
