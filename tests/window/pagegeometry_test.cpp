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

TEST(PageGeometry, TableEndsWithAWholeRow)
{
    EXPECT_EQ(wholeRows(224, 18, 44, 2), 18 + 4 * 44);
    EXPECT_EQ(wholeRows(194, 18, 44, 2), 18 + 4 * 44);
    EXPECT_EQ(wholeRows(193, 18, 44, 2), 18 + 3 * 44);
    EXPECT_EQ(wholeRows(84, 19, 44, 2), 19 + 2 * 44) << "these at least";
    EXPECT_EQ(wholeRows(60, 19, 34, 1), 19 + 34);
    EXPECT_EQ(wholeRows(60, 19, 0, 1), 19) << "a table without rows";
}

TEST(PageGeometry, HintStandsInTheMiddleOrBesideTheResults)
{
    const QRect canvas(0, 0, 700, 160);
    const QSize hint(200, 80);
    EXPECT_EQ(hintPlace(canvas, QRect(), hint).center(), canvas.center());
    const QRect results(410, 0, 175, 120);
    const QRect place = hintPlace(canvas, results, hint);
    EXPECT_FALSE(place.intersects(results));
    EXPECT_TRUE(canvas.contains(place));
    EXPECT_EQ(place.center().y(), canvas.center().y());
    EXPECT_EQ(hintPlace(canvas, results, QSize(500, 80)).left(), 0) << "its beginning is read";
    EXPECT_EQ(hintPlace(canvas, QRect(600, 0, 90, 120), hint).center(), canvas.center());
}

} // namespace
