#include "platform/otdr/reflectogram.h"
#include "programs/otdrreport/picture.h"
#include "tests/support/tracefiles.h"

#include <QImage>

#include <gmock/gmock.h>

#include <cstdint>

namespace {

using otdrreport::pictureOf;
using testing_support::keyEvent;
using testing_support::SorSketch;
using testing_support::TraceFiles;

int count(const QImage& image, const QColor& colour)
{
    int found = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            found += image.pixelColor(x, y) == colour ? 1 : 0;
        }
    }
    return found;
}

QImage draw(const SorSketch& sketch)
{
    const TraceFiles files;
    const Reflectogram refl(files.write("a.sor", sketch));
    return QImage::fromData(pictureOf(refl, otdrreport::reportOf(*refl.state())));
}

TEST(ReportPicture, ShowsTheTraceAndItsEvents)
{
    const QImage image = draw(SorSketch::plain());
    ASSERT_EQ(image.size(), QSize(1280, 640));
    // The fibre fills three quarters of the width and most of the height.
    EXPECT_GT(count(image, Qt::darkBlue), 1280 * 640 / 4);
    EXPECT_GT(count(image, Qt::red), 3 * 300) << "a line for each event";
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
}

TEST(ReportPicture, WithoutEventsHasNoMarks)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"KeyEvents"};
    EXPECT_EQ(count(draw(sketch), Qt::red), 0);
}

TEST(ReportPicture, NoNumberOfAnEventBesideTheRecordReachesIn)
{
    const auto red = [](std::int32_t position) { // the record ends at 199,950
        SorSketch sketch = SorSketch::plain();
        sketch.keyEvents.events.push_back(keyEvent(4, position, "0F9999", 100));
        return count(draw(sketch), Qt::red);
    };
    EXPECT_GT(red(199'900), red(260'000));
    EXPECT_EQ(red(200'300), red(260'000));
}

TEST(ReportPicture, WithoutASpacingNoEventHasAPlaceOnIt)
{
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.pulses[0].dataSpacing = 0;
    sketch.fxd.acquisitionRange = 0;
    const QImage image = draw(sketch); // whose events tell their own distances
    EXPECT_EQ(count(image, Qt::red), 0);
    EXPECT_GT(count(image, Qt::darkBlue), 0);
}

} // namespace
