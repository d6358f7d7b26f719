#include "platform/launcher/fittedfont.h"
#include "platform/launcher/fittingheader.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QStandardItemModel>
#include <QTableView>
#include <QtTest>

#include <gtest/gtest.h>

namespace {

TEST(FittedFont, StaysAsItIsWhereTheTextFits)
{
    const QFont font;
    const int width = QFontMetrics(font).horizontalAdvance("Location");
    EXPECT_EQ(fittedFont(font, "Location", width), font);
}

TEST(FittedFont, IsAsMuchSmallerAsItTakes)
{
    QFont font;
    font.setPixelSize(20);
    const int width = QFontMetrics(font).horizontalAdvance("Location");
    const QFont fitted = fittedFont(font, "Location", width * 7 / 10);
    EXPECT_LE(QFontMetrics(fitted).horizontalAdvance("Location"), width * 7 / 10);
    EXPECT_GE(fitted.pixelSize(), 12);
    EXPECT_LT(fitted.pixelSize(), 20);
}

TEST(FittedFont, IsNeverLessThanHalf)
{
    QFont font;
    font.setPixelSize(20);
    EXPECT_EQ(fittedFont(font, "Location", 1).pixelSize(), 10);
    EXPECT_EQ(fittedFont(font, "Location", -5).pixelSize(), 10);
}

/// A table with a short and a long title, whose columns share a width.
class Titles : public testing::Test
{
protected:
    Titles()
        : model(1, 2)
    {
        model.setHorizontalHeaderLabels({"N", "Attenuation, dB/km"});
        table.setHorizontalHeader(header);
        table.setModel(&model);
        header->setSectionResizeMode(QHeaderView::Stretch);
        table.resize(200, 120);
        table.show();
    }

    QStandardItemModel model;
    QTableView table;
    FittingHeader* header = new FittingHeader(&table);
};

TEST_F(Titles, ShrinkEachToItsColumn)
{
    EXPECT_EQ(QFontInfo(header->titleFont(0)).pixelSize(), QFontInfo(header->font()).pixelSize());
    EXPECT_LT(QFontMetrics(header->titleFont(1)).horizontalAdvance("Attenuation, dB/km"),
              header->sectionSize(1));
    table.resize(800, 120);
    QCoreApplication::processEvents();
    EXPECT_EQ(QFontInfo(header->titleFont(1)).pixelSize(), QFontInfo(header->font()).pixelSize());
}

TEST_F(Titles, HaveRoomForALineAsInAnyHeader)
{
    const int margins = 2 * header->style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, header);
    EXPECT_EQ(header->height(), QFontMetrics(header->font()).height() + margins);
    QTableView other;
    other.setModel(&model);
    other.resize(table.size());
    other.show();
    EXPECT_NEAR(header->height(), other.horizontalHeader()->height(), 1);
}

TEST_F(Titles, AreDrawnWholeInsideTheirColumns)
{
    const QImage picture = header->grab().toImage();
    const int left = header->sectionViewportPosition(1);
    const int right = left + header->sectionSize(1);
    int first = right;
    int last = left;
    for (int x = left; x < right; ++x) {
        for (int y = 0; y < picture.height(); ++y) {
            if (picture.pixelColor(x, y).lightness() < 100) { // ink
                first = qMin(first, x);
                last = qMax(last, x);
            }
        }
    }
    EXPECT_GE(first, left + 2);
    EXPECT_LE(last, right - 3);
    const int wanted = QFontMetrics(header->titleFont(1)).horizontalAdvance("Attenuation, dB/km");
    EXPECT_NEAR(last - first, wanted, 6);
}

} // namespace
