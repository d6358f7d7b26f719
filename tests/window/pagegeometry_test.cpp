#include "window/pagegeometry.h"

#include <gmock/gmock.h>

namespace {

using namespace Waveform::pagegeometry;

constexpr int kInstrument = 428; ///< what the frame leaves of 480
constexpr int kBars = 126;

TEST(PageGeometry, PlotKeepsMostOfALowPageBesideOneTable)
{
    const int table = tableHeight(kInstrument, 1);
    EXPECT_GT(kInstrument - kBars - table, 2 * table);
}

TEST(PageGeometry, TwoTablesAndThePlotFitTheInstrument)
{
    const int table = tableHeight(kInstrument, 2);
    EXPECT_GE(table, kLeastTable);
    EXPECT_GT(kInstrument - kBars - 2 * table, 150);
}

TEST(PageGeometry, TablesTakeLessThanHalfOfALargePage)
{
    EXPECT_EQ(tableHeight(1000, 1), 300);
    EXPECT_EQ(tableHeight(1000, 2), 220);
}

TEST(PageGeometry, TableIsNeverLowerThanItsHeaderAndARow)
{
    for (const int page : {-10, 0, 100, 300}) {
        EXPECT_EQ(tableHeight(page, 2), kLeastTable) << page;
    }
}

TEST(PageGeometry, NoTableIsAsOneThatIsAboutToBeShown)
{
    EXPECT_EQ(tableHeight(748, 0), tableHeight(748, 1));
}

TEST(PageGeometry, LettersAreAsUsualWhereThereIsRoomAndNeverTooSmallToRead)
{
    EXPECT_EQ(letterHeight(250, 7, 12, 17), 17);
    EXPECT_EQ(letterHeight(117, 7, 12, 17), 12);
    EXPECT_EQ(letterHeight(60, 7, 12, 17), 11);
    EXPECT_EQ(letterHeight(60, 7, 12, 9), 9);
    EXPECT_EQ(letterHeight(0, 0, 12, 17), 11);
}

TEST(PageGeometry, LowCanvasHasNoRoomForColumnAndGap)
{
    EXPECT_TRUE(fitsButtonColumn(248));
    EXPECT_FALSE(fitsButtonColumn(160));
    EXPECT_TRUE(fitsLegendGap(248));
    EXPECT_FALSE(fitsLegendGap(230));
}

} // namespace
