// The program as it is run: as a process.

#include "tests/support/requiredcontents.h"
#include "tests/support/tracefiles.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>

#include <gmock/gmock.h>

namespace {

using testing_support::Bytes;
using testing_support::SorSketch;
using testing_support::TraceFiles;

struct Outcome
{
    int code = -1;
    QByteArray out;
    QByteArray err;
};

class OtdrReport : public testing::Test
{
protected:
    static Outcome
    run(const QStringList& arguments,
        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(WAVEFORM_BIN "/otdrreport"), arguments);
        EXPECT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput(),
                process.readAllStandardError()};
    }

    QByteArray contents(const QString& name) const
    {
        return testing_support::requiredContents(files.path(name));
    }

    /// The page of a trace; its picture stands beside it.
    QByteArray page(const SorSketch& sketch, const QString& name = "out.html")
    {
        const Outcome outcome = run({"-i", files.write("in.sor", sketch), "-o", files.path(name)});
        EXPECT_EQ(outcome.code, 0) << outcome.err.constData();
        EXPECT_EQ(outcome.err, "");
        return contents(name);
    }

    QString writeText(const QString& name, const QByteArray& text) const
    {
        const auto* first = reinterpret_cast<const std::byte*>(text.constData());
        return files.write(name, Bytes(first, first + text.size()));
    }

    void expectFailure(const QStringList& arguments, const QByteArray& word)
    {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.err.count('\n'), 1) << outcome.err.constData();
        EXPECT_TRUE(outcome.err.startsWith("otdrreport: ")) << outcome.err.constData();
        EXPECT_TRUE(outcome.err.contains(word)) << outcome.err.constData();
    }

    TraceFiles files;
};

TEST_F(OtdrReport, WritesThePageAndThePictureBesideIt)
{
    const QByteArray html = page(SorSketch::plain(), "north.html");
    EXPECT_TRUE(html.startsWith("<!DOCTYPE html>"));
    EXPECT_EQ(QImage(files.path("north.png")).size(), QSize(1280, 640));
    EXPECT_TRUE(html.contains("data:image/png;base64," + contents("north.png").toBase64()))
        << "the page stands alone";
    for (const char* part : {"Cable 7", "North", "South", "2023-11-14 22:13:20", "Sketch", "Main 1",
                             "in.sor", "3.063", "3.120", "32.50", "1.46800", "End of the fibre"}) {
        EXPECT_TRUE(html.contains(part)) << part;
    }
    EXPECT_EQ(QDir(files.path(".")).entryList(QDir::Files | QDir::Hidden),
              QStringList({"in.sor", "north.html", "north.png"}))
        << "nothing temporary is left";
}

TEST_F(OtdrReport, PageIsCompleteWithoutItsScript)
{
    QString html = page(SorSketch::plain());
    html.remove(
        QRegularExpression("<script.*</script>", QRegularExpression::DotMatchesEverythingOption));
    EXPECT_TRUE(html.contains("<path class=\"trace\" d=\"M"));
    EXPECT_EQ(html.count("class=\"mark\""), 3);
    EXPECT_EQ(html.count("<tr class=\"event\">"), 3);
    EXPECT_EQ(html.count("<tr class=\"section\">"), 2);
}

TEST_F(OtdrReport, PageFetchesNothing)
{
    const QByteArray html = page(SorSketch::plain());
    for (const char* reference : {"src=\"http", "href=", "url(", "@import"}) {
        EXPECT_FALSE(html.contains(reference)) << reference;
    }
}

TEST_F(OtdrReport, HostileStringsAreHarmless)
{
    const std::string evil = "</script><script>alert(1)</script>\"'& onload=x\x01\x1b[2J\x7f";
    const QByteArray html = page(SorSketch::withTexts(evil));
    EXPECT_FALSE(html.contains("<script>alert"));
    EXPECT_FALSE(html.contains("</script><script>alert"));
    EXPECT_EQ(html.count("<script"), 2) << "the samples and the page's own";
    EXPECT_TRUE(
        html.contains("&lt;/script&gt;&lt;script&gt;alert(1)&lt;/script&gt;&quot;&#39;&amp;"));
    for (const char character : html) {
        const auto byte = static_cast<unsigned char>(character);
        EXPECT_TRUE(byte >= 0x20 ? byte != 0x7f : byte == '\n') << int(byte);
    }
}

TEST_F(OtdrReport, HostileFileNameIsHarmless)
{
    const QString name = "<img src=x onerror=alert(1)>\"'.sor";
    const Outcome outcome =
        run({"-i", files.write(name, SorSketch::plain()), "-o", files.path("<b>.html")});
    ASSERT_EQ(outcome.code, 0) << outcome.err.constData();
    const QByteArray html = contents("<b>.html");
    EXPECT_FALSE(html.contains("<img src=x"));
    EXPECT_FALSE(html.contains("<b>"));
    EXPECT_TRUE(html.contains("&lt;img src=x onerror=alert(1)&gt;&quot;&#39;.sor"));
}

TEST_F(OtdrReport, VeryLongStringsArriveWhole)
{
    SorSketch sketch = SorSketch::plain();
    sketch.gen.comment = std::string(60'000, 'w');
    sketch.gen.cableId = std::string(60'000, 'c');
    sketch.keyEvents.events[1].comment = std::string(60'000, 'e');
    const QByteArray html = page(sketch);
    EXPECT_TRUE(html.contains(QByteArray(60'000, 'w')));
    EXPECT_TRUE(html.contains(QByteArray(60'000, 'c')));
    EXPECT_TRUE(html.contains(QByteArray(60'000, 'e')));
}

TEST_F(OtdrReport, FileWithoutEventsSaysSo)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"KeyEvents"};
    const QByteArray html = page(sketch);
    EXPECT_TRUE(html.contains("The file holds no events."));
    EXPECT_FALSE(html.contains("class=\"mark\""));
}

TEST_F(OtdrReport, UnknownIsADashAndNeverZero)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.summary = {};
    const QString html = QString::fromUtf8(page(sketch));
    EXPECT_TRUE(html.contains(QString("<dt>Span loss</dt><dd>") + QChar(0x2013)));
    EXPECT_TRUE(html.contains(QString("<dt>Return loss (ORL)</dt><dd>") + QChar(0x2013)));
}

TEST_F(OtdrReport, SameInputGivesTheSameBytes)
{
    const QByteArray first = page(SorSketch::plain(), "a.html");
    const QByteArray picture = contents("a.png");
    QProcessEnvironment other = QProcessEnvironment::systemEnvironment();
    other.insert("LC_ALL", "de_DE.UTF-8");
    other.insert("TZ", "Pacific/Auckland");
    other.insert("QT_SCALE_FACTOR", "2");
    other.insert("QT_FONT_DPI", "192");
    other.insert("QT_QPA_PLATFORM", "no-such-platform");
    other.insert("QT_HASH_SEED", "7");
    QDir(files.path(".")).mkdir("other");
    const Outcome outcome =
        run({"-i", files.path("in.sor"), "-o", files.path("other/a.html")}, other);
    ASSERT_EQ(outcome.code, 0) << outcome.err.constData();
    EXPECT_EQ(contents("other/a.html"), first);
    EXPECT_EQ(contents("other/a.png"), picture);
}

TEST_F(OtdrReport, TakesATemplateOfTheUser)
{
    const QString own =
        writeText("own.html",
                  "{{ trace.cable }}|{{ summary.loss }}{% for event in events %}|{{ event.number }}"
                  "{% endfor %}");
    const Outcome outcome = run(
        {"-i", files.write("in.sor", SorSketch::plain()), "-o", files.path("out.html"), "-t", own});
    ASSERT_EQ(outcome.code, 0) << outcome.err.constData();
    EXPECT_EQ(contents("out.html"), "Cable 7|3.120|1|2|3");
    EXPECT_TRUE(QFile::exists(files.path("out.png")));
}

TEST_F(OtdrReport, BadTemplateLeavesWhatWasThere)
{
    const QString trace = files.write("in.sor", SorSketch::plain());
    writeText("out.html", "old");
    const QString bad = writeText("bad.html", "{% for %}");
    expectFailure({"-i", trace, "-o", files.path("out.html"), "-t", bad}, "bad.html");
    expectFailure({"-i", trace, "-o", files.path("out.html"), "-t", files.path("none.html")},
                  "none.html");
    expectFailure({"-i", trace, "-o", files.path("out.html"), "-t",
                   writeText("loop.html", "{% include \"loop.html\" %}")},
                  "includes go on and on");
    EXPECT_EQ(contents("out.html"), "old");
    EXPECT_FALSE(QFile::exists(files.path("out.png")));
}

TEST_F(OtdrReport, BadTraceIsOneClearLine)
{
    const QString out = files.path("out.html");
    expectFailure({"-i", files.path("missing.sor"), "-o", out}, "missing.sor");
    expectFailure({"-i", files.write("junk.sor", Bytes(1000)), "-o", out}, "junk.sor");
    expectFailure({"-i", files.write("empty.sor", Bytes()), "-o", out}, "empty.sor");
    expectFailure({"-i", files.path("."), "-o", out}, files.path(".").toUtf8());
    EXPECT_FALSE(QFile::exists(out));
}

TEST_F(OtdrReport, SnapshotIsNoTraceFile)
{
    const QString snapshot =
        files.writeSnapshot("snap.bin", testing_support::TraceBuilder().fibre({1000.0}));
    expectFailure({"-i", snapshot, "-o", files.path("out.html")}, "not a trace file");
}

TEST_F(OtdrReport, TraceWithoutSamplesIsOneClearLine)
{
    SorSketch sketch = SorSketch::plain();
    sketch.samples.clear();
    sketch.fxd.pulses[0].samples = 0;
    expectFailure({"-i", files.write("in.sor", sketch), "-o", files.path("out.html")},
                  "the file holds no samples");
    EXPECT_FALSE(QFile::exists(files.path("out.html")));
}

TEST_F(OtdrReport, UnwritableOutputIsOneClearLine)
{
    const QString trace = files.write("in.sor", SorSketch::plain());
    expectFailure({"-i", trace, "-o", files.path("no/such/out.html")}, "no/such");
    QDir(files.path(".")).mkdir("taken.html");
    expectFailure({"-i", trace, "-o", files.path("taken.html")}, "taken.html");
}

TEST_F(OtdrReport, WrongCommandLineIsCodeTwo)
{
    EXPECT_EQ(run({}).code, 2);
    EXPECT_EQ(run({"-i", "a.sor"}).code, 2);
    EXPECT_EQ(run({"--nonsense"}).code, 2);
    const Outcome help = run({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_TRUE(help.out.contains("-t <TEMPLATE>"));
    EXPECT_TRUE(run({"--version"}).out.startsWith("otdrreport "));
}

TEST_F(OtdrReport, EveryRealTraceGivesAReport)
{
    for (const QString& path : testing_support::realTraces()) {
        const Outcome outcome = run({"-i", path, "-o", files.path("out.html")});
        EXPECT_EQ(outcome.code, 0) << qPrintable(path) << outcome.err.constData();
        EXPECT_EQ(outcome.err, "") << qPrintable(path);
    }
}

} // namespace
