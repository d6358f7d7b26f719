// Files that keep to the format and make no sense: a page with true words or a clear refusal.

#include "platform/otdr/reflectogram.h"
#include "programs/otdrreport/generate.h"
#include "tests/support/tracefiles.h"

#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <limits>

namespace {

using testing_support::Bytes;
using testing_support::keyEvent;
using testing_support::SorSketch;
using testing_support::TraceFiles;

struct Odd
{
    const char* name;
    void (*spoil)(SorSketch&);
};

class OddTraces : public testing::TestWithParam<Odd>
{
};

void manyEvents(SorSketch& sketch, int events, std::int32_t apart)
{
    sketch.keyEvents.events.clear();
    for (int i = 0; i < events; ++i) {
        sketch.keyEvents.events.push_back(keyEvent(i + 1, i * apart, "0F9999LS", 100));
    }
}

TEST_P(OddTraces, GiveAPageOfNumbersAndDashesOrAReason)
{
    SorSketch sketch = SorSketch::plain();
    GetParam().spoil(sketch);
    const TraceFiles files;
    otdrreport::Request request;
    request.task = otdrreport::Task::Write;
    request.trace = files.write("in.sor", sketch);
    request.html = files.path("out.html");
    const QString problem = otdrreport::generate(request);
    if (!problem.isEmpty()) {
        EXPECT_TRUE(problem.contains("in.sor")) << problem.toStdString();
        EXPECT_FALSE(QFile::exists(request.html));
        return;
    }
    QFile file(request.html);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QString html = QString::fromUtf8(file.readAll());
    // The script knows the words, and base64 may spell anything.
    html.remove(
        QRegularExpression("<script.*</script>", QRegularExpression::DotMatchesEverythingOption));
    html.remove(QRegularExpression("data:image/png;base64,[^\"]*"));
    const auto match = QRegularExpression("[^a-zA-Z](nan|-?inf)(?![a-zA-Z])",
                                          QRegularExpression::CaseInsensitiveOption)
                           .match(html);
    EXPECT_FALSE(match.hasMatch()) << html.mid(match.capturedStart() - 60, 120).toStdString();
    EXPECT_FALSE(QRegularExpression("[0-9\u202f]{40}").match(html).hasMatch())
        << "a number beyond all measure";
}

QString generatedPage(const TraceFiles& files, const Bytes& trace)
{
    otdrreport::Request request;
    request.task = otdrreport::Task::Write;
    request.trace = files.write("in.sor", trace);
    request.html = files.path("out.html");
    EXPECT_EQ(otdrreport::generate(request), "");
    QFile file(request.html);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QString::fromUtf8(file.readAll());
}

TEST(DamagedTraces, HaveAllTheirNotesOnThePage)
{
    const TraceFiles files;
    const Bytes whole = SorSketch::plain().build();
    EXPECT_FALSE(generatedPage(files, whole).contains("Notes on reading the file"));
    const Bytes cut(whole.begin(), whole.end() - 2000);
    const QString page = generatedPage(files, cut);
    const QStringList notes = Reflectogram(files.path("in.sor")).notes();
    ASSERT_GT(notes.size(), 2);
    EXPECT_EQ(page.count("Notes on reading the file"), 1);
    for (const QString& note : notes) {
        EXPECT_TRUE(page.contains("<li>" + note.toHtmlEscaped() + "</li>")) << qPrintable(note);
    }
}

constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();

INSTANTIATE_TEST_SUITE_P(
    Report, OddTraces,
    testing::Values(Odd {"NoSpacing", [](SorSketch& s) { s.fxd.pulses[0].dataSpacing = 0; }},
                    Odd {"WidestSpacing",
                         [](SorSketch& s) {
                             s.fxd.pulses[0].dataSpacing =
                                 std::numeric_limits<decltype(s.fxd.pulses[0].dataSpacing)>::max();
                         }},
                    Odd {"NoIndex", [](SorSketch& s) { s.fxd.groupIndex = 0; }},
                    Odd {"SmallestIndex", [](SorSketch& s) { s.fxd.groupIndex = 1; }},
                    Odd {"LargestIndex",
                         [](SorSketch& s) {
                             s.fxd.groupIndex =
                                 std::numeric_limits<decltype(s.fxd.groupIndex)>::max();
                         }},
                    Odd {"NoScale", [](SorSketch& s) { s.scaleFactor = 0; }},
                    Odd {"LargestScale", [](SorSketch& s) { s.scaleFactor = 65535; }},
                    Odd {"OneSample",
                         [](SorSketch& s) {
                             s.samples.resize(1);
                             s.fxd.pulses[0].samples = 1;
                         }},
                    Odd {"FlatLine", [](SorSketch& s) { s.samples.assign(4000, 65535); }},
                    Odd {"FlatTop", [](SorSketch& s) { s.samples.assign(4000, 0); }},
                    Odd {"EventsFarOutside",
                         [](SorSketch& s) {
                             s.keyEvents.events = {keyEvent(1, kLeast, "1F9999LS", 32767, kMost),
                                                   keyEvent(2, kMost, "1E9999LS", -32768, kLeast)};
                         }},
                    Odd {"SummaryFarOutside",
                         [](SorSketch& s) {
                             s.keyEvents.summary = {kLeast, kLeast, kMost, 65535, kMost, kLeast};
                         }},
                    Odd {"EventsInOnePlace", [](SorSketch& s) { manyEvents(s, 500, 0); }},
                    Odd {"EventsInThousands", [](SorSketch& s) { manyEvents(s, 5000, 40); }},
                    Odd {"NoDateNorAverages",
                         [](SorSketch& s) {
                             s.fxd.dateTime_s = 0xffffffff;
                             s.fxd.averages = 0;
                             s.fxd.averagingTime = 0;
                         }}),
    [](const auto& info) { return info.param.name; });

} // namespace
