#include "platform/otdr/reflectogram.h"
#include "programs/otdrreport/picture.h"
#include "tests/support/tracefiles.h"

#include <QImage>

#include <gmock/gmock.h>

namespace {

using otdrreport::pictureOf;
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

} // namespace
