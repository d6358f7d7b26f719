// The page as a browser shows it.

#include "programs/otdrreport/generate.h"
#include "tests/programs/otdrreport/headlessbrowser.h"
#include "tests/support/tracefiles.h"

#include <QImage>
#include <QJsonArray>

#include <gmock/gmock.h>

#include <memory>
#include <vector>

namespace {

using testing_support::HeadlessBrowser;
using testing_support::realTraces;
using testing_support::SorSketch;
using testing_support::TraceFiles;

constexpr QSize kWindow(1200, 900);

class InBrowser : public testing::Test
{
protected:
    void SetUp() override
    {
        if (HeadlessBrowser::program().isEmpty()) {
            GTEST_SKIP() << "chromium is not installed";
        }
        browser = std::make_unique<HeadlessBrowser>(kWindow);
    }

    void TearDown() override
    {
        if (browser) {
            EXPECT_EQ(browser->problems().join("\n").toStdString(), "");
        }
    }

    /// Opens the report of a trace file.
    void openReport(const QString& trace)
    {
        otdrreport::Request request;
        request.task = otdrreport::Task::Write;
        request.trace = trace;
        request.html = files.path("out.html");
        ASSERT_EQ(otdrreport::generate(request), "");
        browser->open(request.html);
    }

    void openReport(const SorSketch& sketch) { openReport(files.write("in.sor", sketch)); }

    int count(const QString& selector)
    {
        return browser->evaluate(QString("document.querySelectorAll('%1').length").arg(selector))
            .toInt();
    }

    QString textOf(const QString& selector)
    {
        return browser->evaluate(QString("document.querySelector('%1').textContent").arg(selector))
            .toString();
    }

    /// Share of the columns of the chart in which the line of the trace is seen.
    double drawnColumns()
    {
        return columnsWith(".chart svg", [](QRgb pixel) {
            return qBlue(pixel) - qRed(pixel) > 60; // the marks are red, the grid is grey
        });
    }

    /// Share of the columns of an element in which a pixel is such.
    template <typename Is>
    double columnsWith(const QString& selector, Is is)
    {
        const QImage shot = browser->screenshot();
        EXPECT_EQ(shot.size(), kWindow);
        const QRect place = browser->rectOf(selector) & shot.rect();
        int found = 0;
        for (int x = place.left(); x <= place.right(); ++x) {
            bool isThere = false;
            for (int y = place.top(); y <= place.bottom() && !isThere; ++y) {
                isThere = is(shot.pixel(x, y));
            }
            found += isThere ? 1 : 0;
        }
        return place.isEmpty() ? 0.0 : static_cast<double>(found) / place.width();
    }

    /// Where the marks of the events stand, in percent of the chart.
    std::vector<double> marks_percent()
    {
        const QJsonArray places = browser
                                      ->evaluate("[...document.querySelectorAll('.mark')].map("
                                                 "(mark) => parseFloat(mark.style.left))")
                                      .toArray();
        std::vector<double> list;
        for (const QJsonValue& place : places) {
            list.push_back(place.toDouble(-1e9));
        }
        return list;
    }

    /// The same places seen from nearer: what lies at a place stays there.
    static std::vector<testing::Matcher<double>> nearer(const std::vector<double>& before,
                                                        double factor, double fixed_percent)
    {
        std::vector<testing::Matcher<double>> wanted;
        wanted.reserve(before.size());
        for (const double place_percent : before) {
            wanted.push_back(
                testing::DoubleNear((place_percent - fixed_percent) * factor + fixed_percent, 0.3));
        }
        return wanted;
    }

    void press(const QString& name)
    {
        browser->click(browser->rectOf(QString("button[aria-label=\"%1\"]").arg(name)).center());
    }

    TraceFiles files;
    std::unique_ptr<HeadlessBrowser> browser;
};

const char* const kZoomIn = "Zoom in";
const char* const kZoomOut = "Zoom out";
const char* const kReset = "Show the fibre as a whole";

TEST_F(InBrowser, ShowsTableChartAndPicture)
{
    openReport(SorSketch::plain());
    EXPECT_EQ(count("table.events tr.event"), 3);
    EXPECT_EQ(count("svg path.trace"), 1);
    EXPECT_EQ(textOf("h1").trimmed(), "Cable 7 · 12");
    EXPECT_GT(drawnColumns(), 0.9);
    EXPECT_EQ(browser
                  ->evaluate("(async () => { document.querySelector('details').open = true;"
                             "const image = document.querySelector('details img');"
                             "image.scrollIntoView(); await image.decode();"
                             "return image.naturalWidth; })()")
                  .toInt(),
              1280);
    EXPECT_GT(columnsWith("details img", [](QRgb pixel) { return qGray(pixel) < 128; }), 0.5);
}

TEST_F(InBrowser, RealTraceIsShown)
{
    const QStringList real = realTraces();
    if (real.isEmpty()) {
        GTEST_SKIP() << "there are no real traces";
    }
    openReport(real.first());
    EXPECT_EQ(count("table.events"), 1);
    EXPECT_GT(drawnColumns(), 0.8);
    press(kZoomIn);
    EXPECT_GT(drawnColumns(), 0.8);
}

TEST_F(InBrowser, ZoomsByButtonsAndWheelAndResets)
{
    openReport(SorSketch::plain());
    const std::vector<double> before = marks_percent();
    ASSERT_EQ(before.size(), 3U);
    EXPECT_EQ(count("button[aria-label=\"Show the fibre as a whole\"]:disabled"), 1);
    press(kZoomIn);
    EXPECT_THAT(marks_percent(), testing::ElementsAreArray(nearer(before, 2.0, 50.0)));
    EXPECT_GT(drawnColumns(), 0.9);
    EXPECT_EQ(count("button:disabled"), 0);
    press(kReset);
    EXPECT_THAT(marks_percent(), testing::ElementsAreArray(nearer(before, 1.0, 50.0)));
    EXPECT_GT(drawnColumns(), 0.9);

    const QRect chart = browser->rectOf(".chart svg");
    browser->wheel(chart.topLeft() + QPoint(chart.width() / 4, chart.height() / 2), -100);
    EXPECT_THAT(marks_percent(), testing::ElementsAreArray(nearer(before, 1.25, 25.0)))
        << "what lies under the pointer stays there";
}

TEST_F(InBrowser, HostileStringsAreTextAndNothingElse)
{
    const std::string evil = "</script></style></title><script>document.title='taken'</script><img "
                             "src=http://127.0.0.1:9/x "
                             "onerror=alert(1)>\"'&<svg onload=alert(2)>{{ script }}";
    openReport(files.write("<svg onload=alert(3)>'\".sor", SorSketch::withTexts(evil)));
    EXPECT_EQ(textOf(".comment").toStdString(), evil);
    EXPECT_EQ(count("script"), 2);
    EXPECT_EQ(count("svg"), 1);
    EXPECT_EQ(count("img"), 1);
    EXPECT_TRUE(browser->evaluate("document.title").toString().startsWith("<svg onload=alert(3)>"));
    EXPECT_EQ(count("table.events tr.event"), 3);
    press(kZoomIn);
    EXPECT_GT(drawnColumns(), 0.9);
}

TEST_F(InBrowser, TraceOfFewSamplesMayBeZoomed)
{
    for (const std::size_t size : {1U, 2U, 3U}) {
        SorSketch sketch = SorSketch::plain();
        sketch.samples.resize(size);
        sketch.fxd.pulses[0].samples = static_cast<std::uint32_t>(size);
        openReport(sketch);
        for (const char* name : {kZoomIn, kZoomIn, kZoomOut, kZoomOut, kZoomOut, kReset}) {
            press(name);
            EXPECT_FALSE(browser->evaluate("document.querySelector('main').innerHTML")
                             .toString()
                             .contains("NaN"))
                << size << " samples, " << name;
        }
    }
}

TEST_F(InBrowser, ChartWithoutDistancesNamesNone)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"FxdParams"};
    openReport(sketch);
    for (int zooms = 0; zooms < 2; ++zooms) {
        EXPECT_EQ(textOf(".xname"), "Distances are not known");
        EXPECT_EQ(count(".x"), 0);
        EXPECT_GT(count(".y"), 2);
        EXPECT_GT(drawnColumns(), 0.5);
        press(kZoomIn);
    }
}

TEST_F(InBrowser, TableOfAThousandEventsIsShown)
{
    constexpr int kEvents = 1000;
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events.clear();
    for (int i = 1; i <= kEvents; ++i) {
        sketch.keyEvents.events.push_back(testing_support::keyEvent(i, i * 150, "0F9999LS", 100));
    }
    openReport(sketch);
    EXPECT_EQ(count("table.events tr.event"), kEvents);
    EXPECT_EQ(count(".mark"), kEvents);
    for (int i = 0; i < 5; ++i) {
        press(kZoomIn); // until the marks leave room between them
    }
    EXPECT_GT(drawnColumns(), 0.5);
}

} // namespace
