#include "platform/otdr/core/snapshot.h"
#include "platform/otdr/tracestate.h"
#include "plot/plot.h"
#include "plot/qmplotzoomer.h"
#include "plot/reflcurve.h"
#include "tests/support/tracefiles.h"

#include <qwt_plot_canvas.h>

#include <QImage>
#include <QtTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace testing_support; // builder and units

/// The rows of the highest pixel in each column of the canvas; the height where there is none.
using Outline = std::vector<int>;

/// A trace on a chart, which is zoomed by the arrow keys and dragged as the window lets it be.
class TracePicture
{
public:
    explicit TracePicture(const Reflectogram& refl)
        : refl(refl)
        , zoomer(new QmPlotZoomer(&plot))
        , curve(plot.clip(), refl, Qt::darkBlue)
    {
        plot.setMaxX(refl.maxdist());
        plot.resize(800, 480);
        plot.show();
        plot.installEventFilter(zoomer);
        zoomer->setMinRange(0.5);
        zoomer->setMinYRange(0.05);
        zoomer->setMaxRect({0.0, 0.0, refl.maxdist(), 50.0});
        curve.attach(&plot);
        zoomer->zoomOff();
    }

    ~TracePicture() { curve.detach(); }

    TracePicture(const TracePicture&) = delete;
    TracePicture& operator=(const TracePicture&) = delete;

    void press(Qt::Key key) { QTest::keyClick(&plot, key); }

    void drag(QPoint delta) { plot.shiftScale(delta); }

    /// Of what is on the screen.
    [[nodiscard]] Outline drawn()
    {
        curve.scale(plot.clip());
        plot.replot();
        const QImage image = plot.canvas()->grab().toImage();
        const QRgb blue = QColor(Qt::darkBlue).rgb();
        Outline rows(static_cast<std::size_t>(image.width()), image.height());
        for (int x = 0; x < image.width(); ++x) {
            int y = 0;
            while (y < image.height() && image.pixel(x, y) != blue) {
                ++y;
            }
            rows[static_cast<std::size_t>(x)] = y;
        }
        return withoutFrame(rows);
    }

    /// Of a stick for each sample of the trace.
    [[nodiscard]] Outline ofAllSamples()
    {
        const QwtScaleMap xMap = plot.canvasMap(QwtPlot::xBottom);
        const QwtScaleMap yMap = plot.canvasMap(QwtPlot::yLeft);
        const auto state = refl.state();
        const int height = plot.canvas()->height();
        const int top = plot.canvas()->contentsRect().top();
        const bool isBaselineAbove = yMap.transform(0.0) < top;
        Outline rows(static_cast<std::size_t>(plot.canvas()->width()), height);
        for (std::size_t i = 0; i < state->trace->size(); ++i) {
            const double distance_m =
                state->trace->distanceAt(static_cast<double>(i), state->metresPerNs());
            const double x = xMap.transform(distance_m);
            if (isBaselineAbove || x < -1.0 || x > plot.canvas()->width() + 1.0) {
                continue;
            }
            const auto column = static_cast<std::size_t>(std::max(0, qRound(x)));
            const double y = yMap.transform(std::max(0.0, state->trace->level_dB(i)));
            if (column < rows.size() && y < height - 1) {
                rows[column] = std::min(rows[column], std::max(top, qRound(y)));
            }
        }
        return withoutFrame(rows);
    }

private:
    /// Without the columns of the frame, and without what lies on its lowest row.
    [[nodiscard]] Outline withoutFrame(const Outline& rows) const
    {
        const QRect inside = plot.canvas()->contentsRect();
        Outline result(rows.begin() + inside.left(), rows.begin() + inside.right());
        for (int& row : result) {
            row = row >= inside.bottom() ? inside.bottom() : row;
        }
        return result;
    }

    Reflectogram refl;
    Waveform::Plot plot;
    QmPlotZoomer* zoomer;
    ReflCurve curve;
};

/// Walks through views of a trace and compares each with the picture of all samples.
void expectTruePictures(const Reflectogram& refl, const std::string& name)
{
    TracePicture picture(refl);
    const auto compare = [&](const char* view) {
        Outline drawn = picture.drawn();
        EXPECT_EQ(drawn, picture.ofAllSamples()) << name << ", " << view;
        return drawn;
    };
    const Outline whole = compare("whole");
    const auto ends = std::minmax_element(whole.begin(), whole.end());
    EXPECT_GT(*ends.second - *ends.first, 50) << name << ": two empty pictures are equal, too";
    picture.press(Qt::Key_Right);
    picture.press(Qt::Key_Right);
    compare("a quarter");
    picture.drag({213, 0});
    compare("a quarter, dragged");
    picture.press(Qt::Key_Up);
    picture.drag({-97, -60});
    compare("half of the levels");
    for (int step = 0; step < 4; ++step) {
        picture.press(Qt::Key_Right);
    }
    compare("a sixty-fourth");
    picture.drag({37, 11});
    compare("a sixty-fourth, dragged");
    for (int step = 0; step < 3; ++step) {
        picture.press(Qt::Key_Right);
    }
    compare("a five-hundredth");
    picture.press(Qt::Key_Left);
    picture.press(Qt::Key_Down);
    compare("back a step");
}

TEST(TruePicture, OfRealTracesIsThatOfAllTheirSamples)
{
    const QStringList files = realTraces();
    if (files.isEmpty()) {
        GTEST_SKIP() << "no trace files at hand";
    }
    int seen = 0;
    for (const QString& file : files) {
        const Reflectogram refl(file);
        if (refl.isValid()) {
            expectTruePictures(refl, file.toStdString());
            ++seen;
        }
    }
    EXPECT_GT(seen, 0);
}

TEST(TruePicture, OfAFibreWithConnectorsIsThatOfAllSamples)
{
    const TraceFiles files;
    TraceBuilder builder;
    builder.sampling(5.0).fibre(40_km).noise({0.1}, 5).noiseFloor({12.0}).behind(40000);
    builder.connector(7_km, {0.4}, {9.0}).splice(19_km, {0.2}).reflection(31_km, {6.0});
    expectTruePictures(Reflectogram(files.writeSnapshot("fibre", builder, 5.0), WfMeasParams()),
                       "fibre");
}

/// A million samples, of which some stand alone above their neighbours.
Reflectogram spikes(const TraceFiles& files)
{
    std::vector<std::uint16_t> counts(1'000'000);
    std::mt19937 random(3);
    std::uniform_int_distribution<int> noise(0, 900);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const int level = i % 7919 == 13 ? 44000 : 20000 - static_cast<int>(i / 100);
        counts[i] = static_cast<std::uint16_t>(65535 - level - noise(random));
    }
    otdr::Snapshot snapshot;
    snapshot.sampleInterval_ns = 0.5;
    snapshot.wavelength_nm = 1550;
    snapshot.pulse_ns = 5;
    snapshot.samples = otdr::RawSamples(counts);
    return {files.write("spikes", otdr::encodeSnapshot(snapshot)), WfMeasParams()};
}

TEST(TruePicture, ShowsPeaksOfOneSampleAtEveryZoom)
{
    const TraceFiles files;
    expectTruePictures(spikes(files), "spikes");
}

} // namespace
