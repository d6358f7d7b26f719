#include "plot/qmmarkerlegend.h"
#include "tests/plot/legendsides.h"
#include "tests/support/echo.h"
#include "tests/support/inlocale.h"

#include <QCoreApplication>
#include <QEvent>
#include <QImage>
#include <QPointer>

#include <gmock/gmock.h>

namespace {

using testing_support::kLeft;
using testing_support::kRight;

class Legend : public testing::Test
{
protected:
    Legend() { parent.resize(400, 300); }

    QWidget parent;
    QmMarkerLegend legend {QPointF(1234.4, 17.256), &parent};
};

TEST_F(Legend, IsBuiltToStandOnTheRightOfItsMarker)
{
    EXPECT_EQ(legend.text(), "1234 m\n17.26 dB");
    EXPECT_EQ(legend.alignment(), kRight);
    EXPECT_EQ(legend.indent(), 4);
    EXPECT_EQ(legend.margin(), 2);
    EXPECT_TRUE(legend.testAttribute(Qt::WA_DeleteOnClose));
}

TEST_F(Legend, SpeaksTheUsersLanguageAndLocale)
{
    const testing_support::InLocale german(QLocale("de_DE"));
    legend.setText(1234.4, 17.256);
    EXPECT_EQ(legend.text(), "1234 m\n17,26 dB");
    const testing_support::Echo language;
    legend.setText(1.0, 2.0);
    EXPECT_EQ(legend.text(), "<1 m\n2,00 dB>");
}

TEST_F(Legend, DeletesItselfWhenClosed)
{
    QPointer<QmMarkerLegend> other(new QmMarkerLegend(QPointF(), &parent));
    other->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(other.isNull());
}

TEST_F(Legend, ShowsDistanceAndLevel)
{
    legend.setText(QPointF(-3.0, -0.004));
    EXPECT_EQ(legend.text(), "-3 m\n-0.00 dB");
    legend.setText(99.6, 40.0);
    EXPECT_EQ(legend.text(), "100 m\n40.00 dB");
}

TEST_F(Legend, IsAsLargeAsItsText)
{
    legend.setText("1234567890");
    const QRect bounds = legend.fontMetrics().boundingRect("1234567890");
    EXPECT_EQ(legend.size(), QSize(bounds.width() + 27, bounds.height() + 2));
    EXPECT_EQ(legend.minimumSize(), legend.maximumSize());
}

TEST_F(Legend, GrowsWithItsFont)
{
    const int before = legend.width();
    QFont font = legend.font();
    font.setPointSize(3 * font.pointSize());
    legend.setFont(font);
    EXPECT_GT(legend.width(), before);
    EXPECT_EQ(legend.text(), "1234 m\n17.26 dB");
}

TEST_F(Legend, StandsToTheRightOfItsMarker)
{
    legend.moveTo(100, 40);
    EXPECT_EQ(legend.pos(), QPoint(100, 40));
    EXPECT_EQ(legend.alignment(), kRight);
}

TEST_F(Legend, NegativeRowKeepsTheRow)
{
    legend.moveTo(100, 40);
    legend.moveTo(120);
    EXPECT_EQ(legend.pos(), QPoint(120, 40));
}

TEST_F(Legend, FlipsToTheLeftNearTheRightEdgeAndBack)
{
    const int last = 400 - legend.width();
    legend.moveTo(last, 40);
    EXPECT_EQ(legend.alignment(), kRight);
    legend.moveTo(last + 1, 40);
    EXPECT_EQ(legend.alignment(), kLeft);
    EXPECT_EQ(legend.pos(), QPoint(last + 1 - legend.width(), 40));
    legend.moveTo(last, 40);
    EXPECT_EQ(legend.alignment(), kRight);
    EXPECT_EQ(legend.pos(), QPoint(last, 40));
}

class LegendPicture : public Legend
{
protected:
    LegendPicture()
    {
        QPalette palette = legend.palette();
        palette.setColor(QPalette::Mid, Qt::red);
        palette.setColor(QPalette::Base, Qt::green);
        palette.setColor(QPalette::WindowText, Qt::black);
        legend.setPalette(palette);
    }

    [[nodiscard]] QImage picture()
    {
        QImage image(legend.size(), QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        legend.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        return image;
    }
};

TEST_F(LegendPicture, IsATranslucentBoxWithAPointerOnTheMarkersSide)
{
    const int w = legend.width();
    const int row = legend.height() / 2;
    QImage image = picture();
    EXPECT_EQ(image.pixelColor(6, row), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(6, 3).alpha(), 0);
    EXPECT_EQ(image.pixelColor(w / 2, 3).green(), 255);
    EXPECT_EQ(image.pixelColor(w / 2, 3).alpha(), 128);

    legend.moveTo(399, 40);
    image = picture();
    EXPECT_EQ(image.pixelColor(w - 6, row), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(w - 6, 3).alpha(), 0);
}

TEST_F(LegendPicture, TextLiesInTheBox)
{
    const auto darkColumns = [this] {
        const QImage image = picture();
        QList<int> columns;
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y) {
                const QColor color = image.pixelColor(x, y);
                if (color.alpha() > 200 && color.red() < 60 && color.green() < 60) {
                    columns << x;
                    break;
                }
            }
        }
        return columns;
    };
    ASSERT_FALSE(darkColumns().isEmpty());
    EXPECT_GT(darkColumns().first(), 16);
    EXPECT_LT(darkColumns().last(), legend.width() - 2);
    legend.moveTo(399, 40);
    EXPECT_GT(darkColumns().first(), 2);
    EXPECT_LT(darkColumns().last(), legend.width() - 16);
}

} // namespace
