#include "platform/launcher/palettefactory.h"
#include "plot/plot.h"
#include "plot/qmminiplot.h"
#include "plot/qmplotmarker.h"
#include "plot/qmplotzoomer.h"

#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

/// Counts how often it is painted.
class PaintedMiniPlot : public QmMiniPlot
{
public:
    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        QmMiniPlot::paintEvent(event);
    }
};

/// On a screen with two pixels for one, each way.
class DenseMiniPlot : public QmMiniPlot
{
protected:
    int metric(PaintDeviceMetric metric) const override
    {
        const int found = QmMiniPlot::metric(metric);
        return metric == PdmDevicePixelRatio || metric == PdmDevicePixelRatioScaled ? 2 * found
                                                                                    : found;
    }
};

/// An overview of 216 x 116 pixels, 50 m and 0.5 dB each, 0 m in column 8 and 0 dB in row 108. The
/// colours of its palette tell the parts of the picture apart.
class MiniPlot : public testing::Test
{
protected:
    MiniPlot()
    {
        QPalette palette;
        palette.setColor(QPalette::Window, QColor(0, 0, 200));
        palette.setColor(QPalette::Mid, QColor(200, 0, 200));
        palette.setColor(QPalette::AlternateBase, QColor(0, 200, 0));
        mini.setPalette(palette);
        mini.resize(216, 116);
        mini.show();
        mini.setScales(QRectF(0.0, 50.0, 10000.0, -50.0));
        settle();
    }

    void settle()
    {
        QCoreApplication::processEvents();
        mini.paints = 0;
    }

    /// How often the widget was painted since settle().
    int paints()
    {
        QCoreApplication::processEvents();
        return mini.paints;
    }

    /// The picture as it would be painted now.
    QImage picture()
    {
        QImage image(mini.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        mini.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        return image;
    }

    static bool isHighlight(const QColor& colour)
    {
        return colour.green() > 100 && colour.red() < 50;
    }

    static bool isCurve(const QColor& colour)
    {
        // On the border of two pixels a line half covers both; the background has an alpha of 64.
        return colour.alpha() > 150 && colour.value() < 60;
    }

    static bool isTick(const QColor& colour)
    {
        return colour == PaletteFactory::getPalette("CriticalButton").color(QPalette::Button);
    }

    /// The pixels of a picture that are part of something, as one rectangle; null for none.
    static QRect where(const QImage& image, bool (*is)(const QColor&))
    {
        QRect found;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (is(image.pixelColor(x, y))) {
                    found |= QRect(x, y, 1, 1);
                }
            }
        }
        return found;
    }

    QRect highlight() { return where(picture(), isHighlight); }

    QRect curve() { return where(picture(), isCurve); }

    QRect ticks() { return where(picture(), isTick); }

    PaintedMiniPlot mini;
};

/// A trace of one level over the whole scale.
QPolygonF flatTrace(double level_dB)
{
    return QPolygonF() << QPointF(0.0, level_dB) << QPointF(10000.0, level_dB);
}

TEST_F(MiniPlot, OnADenseScreenTheCurveIsDrawnInItsPixels)
{
    DenseMiniPlot dense;
    dense.resize(216, 116);
    dense.show();
    dense.setScales(QRectF(0.0, 50.0, 10000.0, -50.0));
    dense.setSamples(flatTrace(25.0), true);
    QImage image(2 * dense.size(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(2.0);
    image.fill(Qt::white);
    dense.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    const QRect found = where(image, [](const QColor& colour) { return colour.value() < 60; });
    EXPECT_NEAR(found.left(), 16, 1); // from 0 m to 10 km
    EXPECT_NEAR(found.right(), 416, 1);
    EXPECT_LE(found.height(), 2) << "one pixel wide, as large ones would not be";
}

TEST_F(MiniPlot, IsHalfTransparentAsAWindow)
{
    EXPECT_NEAR(mini.windowOpacity(), 0.5, 1.0 / 255.0);
}

TEST_F(MiniPlot, PaintsAFrameAndAShineOfTheWindowColour)
{
    const QImage image = picture();
    const QColor inside = image.pixelColor(100, 60);
    EXPECT_EQ(inside.alpha(), 64);
    EXPECT_NEAR(inside.blue(), 200, 4);
    EXPECT_EQ(image.pixelColor(0, 60), QColor(200, 0, 200));
    EXPECT_EQ(image.pixelColor(215, 60), QColor(200, 0, 200));
    EXPECT_EQ(image.pixelColor(100, 0), QColor(200, 0, 200));
    EXPECT_EQ(image.pixelColor(100, 115), QColor(200, 0, 200));
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << "the corners are round";
}

TEST_F(MiniPlot, StartsWithoutCurveHighlightAndTicks)
{
    EXPECT_TRUE(curve().isNull());
    EXPECT_TRUE(highlight().isNull());
    EXPECT_TRUE(ticks().isNull());
}

TEST_F(MiniPlot, TransformsAnAreaToItsPixels)
{
    EXPECT_EQ(mini.transformArea({1000.0, 10.0, 5000.0, 20.0}), QRectF(28.0, 88.0, 100.0, -40.0));
}

TEST_F(MiniPlot, DrawsTheWholeTraceBetweenItsMargins)
{
    mini.setSamples(flatTrace(25.0));
    const QRect drawn = curve();
    EXPECT_NEAR(drawn.left(), 8, 1);
    EXPECT_NEAR(drawn.right(), 208, 1);
    EXPECT_NEAR(drawn.center().y(), 58, 1);
    EXPECT_LE(drawn.height(), 2);
}

TEST_F(MiniPlot, HighLevelsAreOnTop)
{
    mini.setSamples(flatTrace(40.0));
    EXPECT_NEAR(curve().center().y(), 28, 1);
}

TEST_F(MiniPlot, DrawsSlopesWithoutSteps)
{
    mini.setSamples(QPolygonF() << QPointF(0.0, 10.0) << QPointF(10000.0, 40.0));
    const QImage image = picture();
    int halfCovered = 0;
    for (int x = 20; x < 200; ++x) {
        for (int y = 20; y < 100; ++y) {
            const int alpha = image.pixelColor(x, y).alpha();
            halfCovered += alpha > 70 && alpha < 250 ? 1 : 0;
        }
    }
    EXPECT_GT(halfCovered, 180) << "at least one a column";
}

TEST_F(MiniPlot, AnEmptyPolygonWipesTheCurve)
{
    mini.setSamples(flatTrace(25.0));
    mini.setSamples({});
    EXPECT_TRUE(curve().isNull());
}

TEST_F(MiniPlot, PaintingOnlyCopiesTheCurve)
{
    mini.setSamples(flatTrace(25.0));
    const QRect drawn = curve();
    mini.setScales(QRectF(0.0, 50.0, 20000.0, -50.0), false);
    EXPECT_EQ(curve(), drawn) << "drawn for the scales of before";
    mini.cacheCurve();
    EXPECT_NEAR(curve().right(), 108, 1);
}

TEST_F(MiniPlot, NewScalesDrawTheCurveAnew)
{
    mini.setSamples(flatTrace(25.0));
    mini.setScales(QRectF(0.0, 50.0, 20000.0, -50.0));
    EXPECT_NEAR(curve().right(), 108, 1);
}

TEST_F(MiniPlot, ANewSizeDrawsTheCurveAnew)
{
    mini.setSamples(flatTrace(25.0));
    mini.resize(416, 216);
    QCoreApplication::processEvents();
    EXPECT_NEAR(curve().right(), 408, 1);
    EXPECT_NEAR(curve().center().y(), 108, 1);
}

TEST_F(MiniPlot, RepaintsOnceWhereItIsAskedTo)
{
    mini.setScales(QRectF(0.0, 50.0, 20000.0, -50.0));
    EXPECT_EQ(paints(), 1);
    mini.setSamples(flatTrace(25.0));
    EXPECT_EQ(paints(), 2);
    mini.highlightArea(QRectF(0.0, 0.0, 1000.0, 10.0));
    EXPECT_EQ(paints(), 3);
    mini.highlightArea(0.0, 1000.0, 0.0, 20.0);
    EXPECT_EQ(paints(), 4);
    mini.setMarkers({});
    EXPECT_EQ(paints(), 5);
}

TEST_F(MiniPlot, DoesNotRepaintWhereItIsAskedNotTo)
{
    mini.setScales(QRectF(0.0, 50.0, 20000.0, -50.0), false);
    mini.setSamples(flatTrace(25.0), false);
    mini.highlightArea(QRectF(0.0, 0.0, 5000.0, 25.0), false);
    mini.highlightArea(0.0, 6000.0, 0.0, 25.0, false);
    mini.nohl();
    EXPECT_EQ(paints(), 0);
    EXPECT_NEAR(curve().right(), 108, 1) << "the samples are there at the next repaint";
}

TEST_F(MiniPlot, HighlightsAnArea)
{
    mini.highlightArea(1000.0, 6000.0, 10.0, 30.0);
    EXPECT_EQ(highlight(), QRect(QPoint(28, 48), QPoint(128, 88)));
    mini.highlightArea(QRectF(2000.0, 20.0, 5000.0, 20.0));
    EXPECT_EQ(highlight(), QRect(QPoint(48, 28), QPoint(148, 68)));
}

TEST_F(MiniPlot, FillsTheHighlightAndEdgesItDarker)
{
    mini.highlightArea(1000.0, 6000.0, 10.0, 30.0);
    const QImage image = picture();
    const QColor inside = image.pixelColor(80, 70);
    const QColor edge = image.pixelColor(28, 70);
    EXPECT_GE(inside.alpha(), 192);
    EXPECT_LT(inside.alpha(), 255) << "what lies below shines through";
    EXPECT_LT(edge.green(), inside.green());
}

TEST_F(MiniPlot, HighlightIsThreeQuartersOpaqueAndItsEdgeAThirdDarker)
{
    QImage expected = picture();
    QColor colour(0, 200, 0);
    colour.setAlpha(192);
    QPainter painter(&expected);
    painter.setBrush(colour);
    painter.setPen(colour.darker(130));
    painter.drawRect(QRectF(28.0, 88.0, 100.0, -40.0));
    painter.end();
    mini.highlightArea(1000.0, 6000.0, 10.0, 30.0);
    EXPECT_EQ(picture(), expected);
}

TEST_F(MiniPlot, ANarrowHighlightIsSixteenPixelsWideAboutItsArea)
{
    mini.highlightArea(QRectF(5000.0, 10.0, 1.0, 20.0));
    const QRect shown = highlight();
    EXPECT_EQ(shown.width(), 17) << "the edge is a pixel";
    EXPECT_NEAR(shown.center().x(), 108, 1);
}

TEST_F(MiniPlot, ALowHighlightIsTwelvePixelsHighAboutItsArea)
{
    mini.highlightArea(QRectF(1000.0, 25.0, 5000.0, 0.1));
    const QRect shown = highlight();
    EXPECT_EQ(shown.height(), 13);
    EXPECT_NEAR(shown.center().y(), 58, 1);
}

TEST_F(MiniPlot, TheHighlightKeepsItsLeastSizeWithNewScalesAndSize)
{
    mini.highlightArea(QRectF(5000.0, 25.0, 1.0, 0.1));
    mini.setScales(QRectF(0.0, 50.0, 20000.0, -50.0));
    EXPECT_EQ(highlight().size(), QSize(17, 13));
    EXPECT_NEAR(highlight().center().x(), 58, 1);
    mini.resize(416, 216);
    QCoreApplication::processEvents();
    EXPECT_EQ(highlight().size(), QSize(17, 13));
    EXPECT_NEAR(highlight().center().x(), 108, 1);
    EXPECT_NEAR(highlight().center().y(), 108, 1);
}

TEST_F(MiniPlot, NohlHidesTheHighlightOnlyAtTheNextRepaint)
{
    mini.highlightArea(QRectF(1000.0, 10.0, 5000.0, 20.0));
    settle();
    mini.nohl();
    EXPECT_EQ(paints(), 0) << "what is on the screen stays";
    EXPECT_TRUE(highlight().isNull());
    mini.highlightArea(QRectF(1000.0, 10.0, 5000.0, 20.0));
    EXPECT_FALSE(highlight().isNull());
}

TEST_F(MiniPlot, TheAreaStaysThroughNohl)
{
    mini.highlightArea(QRectF(1000.0, 10.0, 5000.0, 20.0));
    const QRect before = highlight();
    mini.nohl();
    mini.setScales(QRectF(0.0, 50.0, 10000.0, -50.0));
    EXPECT_TRUE(highlight().isNull());
    mini.highlightArea(QRectF(1000.0, 10.0, 5000.0, 20.0));
    EXPECT_EQ(highlight(), before);
}

/// Markers on a canvas of their own, hidden, so that they keep the distances that they are given.
class MiniPlotMarkers : public MiniPlot
{
protected:
    QmPlotMarker* markerAt(double x_m)
    {
        auto* marker = new QmPlotMarker(&canvas);
        marker->setXValue(x_m);
        return marker;
    }

    QWidget canvas;
};

TEST_F(MiniPlotMarkers, EachHasATickFromMarginToMargin)
{
    mini.setMarkers({markerAt(1000.0), markerAt(5000.0)});
    const QImage image = picture();
    for (const int column : {28, 108}) {
        EXPECT_EQ(where(image.copy(column - 5, 0, 11, image.height()), isTick),
                  QRect(QPoint(5, 8), QPoint(5, 108)));
    }
    EXPECT_EQ(where(image, isTick), QRect(QPoint(28, 8), QPoint(108, 108))) << "and no others";
}

TEST_F(MiniPlotMarkers, MovedOnesAreSeenWhenGivenAgain)
{
    QmPlotMarker* marker = markerAt(1000.0);
    mini.setMarkers({marker});
    marker->setXValue(5000.0);
    EXPECT_EQ(ticks().left(), 28);
    mini.setMarkers({marker});
    EXPECT_EQ(ticks().left(), 108);
    delete marker;
    EXPECT_EQ(ticks().left(), 108) << "only the distance was kept";
    mini.setMarkers({});
    EXPECT_TRUE(ticks().isNull());
}

TEST_F(MiniPlotMarkers, OutsideTheScaleTheyAreDrawnWhereTheyMapTo)
{
    mini.setMarkers({markerAt(10200.0)});
    EXPECT_EQ(ticks().left(), 212) << "in the margin";
    mini.setMarkers({markerAt(11000.0), markerAt(-1000.0), markerAt(1e300)});
    EXPECT_TRUE(ticks().isNull()) << "beyond the widget";
}

TEST_F(MiniPlotMarkers, LieOverTheCurveAndBelowTheHighlight)
{
    mini.setSamples(flatTrace(25.0));
    mini.setMarkers({markerAt(5000.0)});
    EXPECT_TRUE(isTick(picture().pixelColor(108, 58)));
    mini.highlightArea(QRectF(4000.0, 10.0, 3000.0, 30.0));
    EXPECT_FALSE(isTick(picture().pixelColor(108, 58)));
}

TEST(NewMiniPlot, StandsBeingSetUpAndPaintedWithoutASize)
{
    QmMiniPlot mini;
    mini.setSamples(flatTrace(25.0));
    mini.setScales(QRectF(0.0, 50.0, 0.0, -50.0));
    mini.highlightArea(QRectF(0.0, 0.0, 0.0, 0.0));
    mini.cacheCurve();
    mini.resize(1, 1);
    mini.show();
    QCoreApplication::processEvents();
    mini.resize(0, 0);
    QCoreApplication::processEvents();
    QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
    mini.render(&image);
    EXPECT_FALSE(mini.transformArea({0.0, 0.0, 1.0, 1.0}).isNull());
}

TEST(MiniPlotOnAPlot, FollowsTheZoomerAndThePanner)
{
    Waveform::Plot plot;
    plot.setMaxX(10000.0);
    plot.resize(800, 480);
    auto* zoomer = new QmPlotZoomer(&plot);
    auto* mini = new QmMiniPlot(plot.canvas());
    EXPECT_TRUE(
        QObject::connect(&plot, SIGNAL(scaledTo(QRectF)), mini, SLOT(highlightArea(QRectF))));
    EXPECT_TRUE(
        QObject::connect(zoomer, SIGNAL(newBounds(QRectF)), mini, SLOT(highlightArea(QRectF))));
    EXPECT_TRUE(QObject::connect(zoomer, SIGNAL(maxScaledOut()), mini, SLOT(nohl())));
    EXPECT_TRUE(
        QObject::connect(zoomer, SIGNAL(disableZoomOut(bool)), mini, SLOT(setHidden(bool))));
    plot.show();
    zoomer->setMaxRect({0.0, 0.0, 10000.0, 50.0});
    zoomer->zoomOff();
    EXPECT_FALSE(mini->isVisible());
    zoomer->zoomIn();
    EXPECT_TRUE(mini->isVisible());
}

} // namespace
