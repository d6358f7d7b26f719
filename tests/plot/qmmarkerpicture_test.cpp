#include "platform/launcher/palettefactory.h"
#include "tests/plot/markertest.h"
#include "tests/support/contrast.h"

#include <QImage>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

class MarkerPicture : public Marker
{
protected:
    MarkerPicture()
    {
        QPalette palette = marker.palette();
        palette.setColor(QPalette::Window, kKnob);
        palette.setColor(QPalette::WindowText, Qt::black);
        marker.setPalette(palette);
    }

    /// The marker alone, on nothing.
    [[nodiscard]] QImage picture() { return picture(marker); }

    [[nodiscard]] static QImage picture(QmMarker& shown)
    {
        QImage image(shown.size(), QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        shown.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        return image;
    }

    [[nodiscard]] static int dark(const QImage& image, const QRect& area)
    {
        int count = 0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                count += qGray(image.pixel(x, y)) < 60 && qAlpha(image.pixel(x, y)) == 255 ? 1 : 0;
            }
        }
        return count;
    }

    /// The row in the middle of the letter, from side to side of the knob.
    [[nodiscard]] std::vector<QColor> letterOn(const QColor& canvas)
    {
        QImage image(marker.size(), QImage::Format_RGB32);
        image.fill(canvas);
        marker.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        std::vector<QColor> row;
        for (int x = 9; x <= 19; ++x) {
            row.push_back(image.pixelColor(x, 274));
        }
        return row;
    }

    /// Of the stroke against what lies beside it.
    [[nodiscard]] static double bestContrast(const std::vector<QColor>& row)
    {
        double best = 0.0;
        for (const QColor& color : row) {
            best = std::max(best, testing_support::contrast(color, row.front()));
        }
        return best;
    }

    const QColor kKnob {250, 220, 180};
    const QColor line = PaletteFactory::getPalette("GenericWindow").color(QPalette::Button);
};

TEST_F(MarkerPicture, IsAOneColumnLineWithAKnob)
{
    const QImage image = picture();
    EXPECT_EQ(image.pixelColor(14, 0), line);
    EXPECT_EQ(image.pixelColor(14, 250), line);
    EXPECT_EQ(image.pixelColor(14, 299), line);
    EXPECT_EQ(image.pixelColor(13, 100).alpha(), 0);
    EXPECT_EQ(image.pixelColor(15, 100).alpha(), 0);
    EXPECT_EQ(image.pixelColor(14, 274), kKnob);
    EXPECT_EQ(image.pixelColor(1, 262).alpha(), 0); // outside the circle
}

TEST_F(MarkerPicture, PressedMarkerHasADarkerLineInASoftLight)
{
    finger.press(marker, knob());
    const QImage image = picture();
    EXPECT_EQ(image.pixelColor(14, 100).rgba(), line.darker(200).rgba());
    EXPECT_GT(image.pixelColor(13, 100).alpha(), 30);
    EXPECT_GT(image.pixelColor(13, 100).alpha(), image.pixelColor(10, 100).alpha());
    EXPECT_EQ(image.pixelColor(4, 100).alpha(), 0);
    finger.release();
    EXPECT_EQ(picture().pixelColor(13, 100).alpha(), 0);
}

TEST_F(MarkerPicture, CheckedKnobIsLit)
{
    marker.setChecked(true);
    EXPECT_EQ(picture().pixelColor(14, 274), line);
    marker.setCheckable(false);
    EXPECT_EQ(picture().pixelColor(14, 274), kKnob);
}

TEST_F(MarkerPicture, SymbolIsReadOnTheLitKnobAsOnThePlainOne)
{
    marker.setPalette(PaletteFactory::getPalette("chart"));
    marker.setSymbol(QChar('I'));
    for (const bool check : {false, true}) {
        marker.setChecked(check);
        // The canvas and the traces on it shine through the light.
        for (const QColor& behind : {QColor(Qt::white), QColor(Qt::black)}) {
            EXPECT_GE(bestContrast(letterOn(behind)), 4.5)
                << check << " on " << behind.name().toStdString();
        }
    }
}

TEST_F(MarkerPicture, KnobHasAnEdgeOfTwoPixels)
{
    const QImage image = picture();
    for (const int x : {0, 1, 27, 28}) {
        EXPECT_GT(image.pixelColor(x, 274).alpha(), 200) << x;
        EXPECT_NEAR(image.pixelColor(x, 274).red(), line.red(), 8) << x;
    }
    EXPECT_EQ(image.pixelColor(3, 274), kKnob);
    EXPECT_EQ(image.pixelColor(25, 274), kKnob);
}

TEST_F(MarkerPicture, SymbolStandsInTheMiddleOfTheKnob)
{
    const QRect inner(6, 266, 17, 17);
    EXPECT_EQ(dark(picture(), inner), 0);
    marker.setSymbol(QChar('I'));
    EXPECT_GT(dark(picture(), QRect(11, 266, 8, 17)), 3);
    EXPECT_EQ(dark(picture(), QRect(6, 266, 4, 17)), 0);
    EXPECT_EQ(dark(picture(), QRect(20, 266, 3, 17)), 0);
}

TEST_F(MarkerPicture, SymbolStandsInTheMiddleInAnyFont)
{
    const auto isInTheMiddle = [](const QImage& image) {
        int left = 0;
        int right = 28;
        for (; left < right && dark(image, QRect(left, 262, 1, 25)) == 0; ++left) { }
        for (; left < right && dark(image, QRect(right, 262, 1, 25)) == 0; --right) { }
        return right - left >= 5 && std::abs(left + right - 28) <= 2;
    };
    QFont font = canvas.font();
    font.setPixelSize(24);
    canvas.setFont(font);
    QmMarker large(&canvas); // has the font from its parent
    large.setPalette(marker.palette());
    large.setSymbol(QChar('H'));
    EXPECT_TRUE(isInTheMiddle(picture(large)));
    font.setPixelSize(14);
    large.setFont(font);
    EXPECT_TRUE(isInTheMiddle(picture(large)));
}

TEST_F(MarkerPicture, PixmapIsShownWhereThereIsNoCharacter)
{
    QPixmap pixmap(5, 5);
    pixmap.fill(Qt::red);
    marker.setSymbol(pixmap);
    QImage image = picture();
    EXPECT_EQ(image.pixelColor(12, 272), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(16, 276), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(17, 277), kKnob);
    marker.setSymbol(QChar('.'));
    EXPECT_NE(picture().pixelColor(12, 272), QColor(Qt::red));
}

} // namespace
