#include "tests/support/requiredcontents.h"
#include "tests/support/sorsketch.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAreArray;
using testing_support::Bytes;
using testing_support::ByteSketch;
using testing_support::ChecksumRecipe;
using testing_support::requiredContents;
using testing_support::SorSketch;

struct Outcome
{
    int code = -1;
    QByteArray out;
    QByteArray err;
};

Outcome run(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(WAVEFORM_BIN "/otdrinfo"), arguments);
    EXPECT_TRUE(process.waitForFinished(20'000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

class OtdrInfo : public testing::Test
{
protected:
    QString at(const QString& name) const { return directory.filePath(name); }

    QString save(const QString& name, const Bytes& bytes) const
    {
        QFile file(at(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
        return at(name);
    }

    QString save(const QString& name, const SorSketch& sketch) const
    {
        return save(name, sketch.build());
    }

    static QJsonObject json(const QString& path)
    {
        const Outcome outcome = run({"--json", path});
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.out.count('\n'), 1);
        return QJsonDocument::fromJson(outcome.out).object();
    }

    QTemporaryDir directory;
};

TEST_F(OtdrInfo, GivesTheJsonObjectWithTheseFields)
{
    const QJsonObject object = json(save("trace.sor", SorSketch::plain()));
    EXPECT_THAT(object.keys(),
                UnorderedElementsAreArray(QStringList {"file",
                                                       "format_version",
                                                       "supplier",
                                                       "mainframe",
                                                       "module",
                                                       "wavelength_nm",
                                                       "pulse_ns",
                                                       "ior",
                                                       "samples",
                                                       "spacing_m",
                                                       "range_m",
                                                       "averages",
                                                       "averaging_time_s",
                                                       "date_utc",
                                                       "checksum_ok",
                                                       "backscatter_db",
                                                       "total_loss_db",
                                                       "orl_db",
                                                       "fibre_end_m",
                                                       "events"}));
    EXPECT_EQ(object["file"].toString(), at("trace.sor"));
    EXPECT_EQ(object["format_version"].toInt(), 2);
    EXPECT_EQ(object["supplier"].toString(), "Sketch");
    EXPECT_EQ(object["mainframe"].toString(), "Main 1");
    EXPECT_EQ(object["module"].toString(), "Module 2"); // without its blank
    EXPECT_EQ(object["wavelength_nm"].toInt(), 1550);
    EXPECT_EQ(object["pulse_ns"].toInt(), 100);
    EXPECT_DOUBLE_EQ(object["ior"].toDouble(), 1.468);
    EXPECT_EQ(object["samples"].toInt(), 4000);
    EXPECT_NEAR(object["spacing_m"].toDouble(), 1.02109, 1e-5); // 5 ns one way
    EXPECT_NEAR(object["range_m"].toDouble(), 4084.37, 0.01);
    EXPECT_EQ(object["averages"].toInt(), 4096);
    EXPECT_DOUBLE_EQ(object["averaging_time_s"].toDouble(), 30.0);
    EXPECT_EQ(object["date_utc"].toString(), "2023-11-14T22:13:20Z");
    EXPECT_EQ(object["checksum_ok"], QJsonValue(true));
    EXPECT_DOUBLE_EQ(object["backscatter_db"].toDouble(), -81.5);
    EXPECT_DOUBLE_EQ(object["total_loss_db"].toDouble(), 3.12);
    EXPECT_DOUBLE_EQ(object["orl_db"].toDouble(), 32.5);
    EXPECT_NEAR(object["fibre_end_m"].toDouble(), 3063.27, 0.01);
}

TEST_F(OtdrInfo, GivesEachEventAsTheFileHasIt)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events[0].number = 2;
    sketch.keyEvents.events[1].comment = " bend \xE9 ";
    const QJsonArray events = json(save("trace.sor", sketch))["events"].toArray();
    ASSERT_EQ(events.size(), 3);
    const QJsonObject first = events[0].toObject();
    EXPECT_THAT(first.keys(),
                UnorderedElementsAreArray(QStringList {"number", "kind", "code", "distance_m",
                                                       "loss_db", "reflectance_db",
                                                       "attenuation_before_db_per_km", "comment"}));
    EXPECT_EQ(first["number"].toInt(), 2);
    EXPECT_EQ(first["kind"].toString(), "s");
    EXPECT_EQ(first["code"].toString(), "1F9999");
    EXPECT_DOUBLE_EQ(first["distance_m"].toDouble(), 0.0);
    EXPECT_DOUBLE_EQ(first["reflectance_db"].toDouble(), -45.0);
    EXPECT_TRUE(first["attenuation_before_db_per_km"].isNull());
    EXPECT_EQ(first["comment"].toString(), "");
    const QJsonObject second = events[1].toObject();
    EXPECT_EQ(second["kind"].toString(), "n");
    EXPECT_NEAR(second["distance_m"].toDouble(), 1021.09, 0.01);
    EXPECT_DOUBLE_EQ(second["loss_db"].toDouble(), 0.12);
    EXPECT_TRUE(second["reflectance_db"].isNull());
    EXPECT_DOUBLE_EQ(second["attenuation_before_db_per_km"].toDouble(), 0.19);
    EXPECT_EQ(second["comment"].toString(), QString::fromUtf8("bend \u00E9"));
    EXPECT_EQ(events[2].toObject()["kind"].toString(), "e");
}

TEST_F(OtdrInfo, GivesNullForWhatTheFileDoesNotSay)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"SupParams", "FxdParams", "GenParams", "KeyEvents"};
    const QJsonObject object = json(save("bare.sor", sketch));
    for (const char* key : {"supplier", "mainframe", "module", "wavelength_nm", "pulse_ns", "ior",
                            "spacing_m", "range_m", "averages", "averaging_time_s", "date_utc",
                            "backscatter_db", "total_loss_db", "orl_db", "fibre_end_m"}) {
        EXPECT_TRUE(object.contains(key) && object[key].isNull()) << key;
    }
    EXPECT_EQ(object["samples"].toInt(), 4000);
    EXPECT_EQ(object["events"].toArray().size(), 0);
}

TEST_F(OtdrInfo, TellsNoDistanceWhereItIsNotSaidHowItWasMeasured)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"FxdParams"};
    const QString path = save("bare.sor", sketch);
    const QJsonObject object = json(path);
    ASSERT_EQ(object["events"].toArray().size(), 3);
    EXPECT_TRUE(object["events"].toArray()[2].toObject()["distance_m"].isNull());
    EXPECT_TRUE(object["fibre_end_m"].isNull());
    EXPECT_THAT(run({path}).out.toStdString(), HasSubstr("  fibre end          -\n"));
}

TEST_F(OtdrInfo, JudgesTheChecksumWhereItCanBeJudged)
{
    SorSketch sketch = SorSketch::plain();
    sketch.checksum = ChecksumRecipe::Private;
    EXPECT_EQ(json(save("a.sor", sketch))["checksum_ok"], QJsonValue(false));
    sketch.makers = {{"ExfoNewProprietaryBlock 01", Bytes(4)}};
    EXPECT_TRUE(json(save("b.sor", sketch))["checksum_ok"].isNull());
    sketch.checksum = ChecksumRecipe::Zero;
    EXPECT_TRUE(json(save("c.sor", sketch))["checksum_ok"].isNull());
    sketch.checksum = ChecksumRecipe::NoBlock;
    EXPECT_TRUE(json(save("d.sor", sketch))["checksum_ok"].isNull());
}

TEST_F(OtdrInfo, GivesAnObjectALineForSeveralFiles)
{
    const QString first = save("first.sor", SorSketch::plain());
    const QString second = save("second.sor", SorSketch::plain());
    const Outcome outcome = run({"--json", first, second});
    const QList<QByteArray> lines = outcome.out.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(QJsonDocument::fromJson(lines[0]).object()["file"].toString(), first);
    EXPECT_EQ(QJsonDocument::fromJson(lines[1]).object()["file"].toString(), second);
}

TEST_F(OtdrInfo, ShowsTheOtherFilesBesideABadOne)
{
    const QString good = save("good.sor", SorSketch::plain());
    const QString bad = save("bad.sor", ByteSketch().text("not a trace").done);
    const Outcome outcome = run({"--json", bad, good, at("missing.sor")});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out.count('\n'), 1);
    const QList<QByteArray> errors = outcome.err.trimmed().split('\n');
    ASSERT_EQ(errors.size(), 2);
    EXPECT_THAT(errors[0].toStdString(), HasSubstr("bad.sor: "));
    EXPECT_THAT(errors[1].toStdString(), HasSubstr("missing.sor: No such file"));
}

TEST_F(OtdrInfo, GivesEverySampleAsCsv)
{
    SorSketch sketch = SorSketch::plain();
    sketch.samples = testing_support::fibreSamples(4000, {500, 3500}, 10, 3500);
    sketch.fxd.frontPanelOffset = 25'000; // 500 samples before the port
    const Outcome outcome = run({"--csv", save("trace.sor", sketch)});
    EXPECT_EQ(outcome.code, 0);
    const QList<QByteArray> lines = outcome.out.split('\n');
    ASSERT_EQ(lines.size(), 4002);
    EXPECT_EQ(lines[0], "distance_m,level_db");
    EXPECT_EQ(lines[1], "-510.545739,45.535");
    EXPECT_EQ(lines[501], "0.000000,57.035"); // (65535 - 8500) / 1000
    EXPECT_EQ(lines[4001], "");
}

TEST_F(OtdrInfo, LeavesUnknownDistancesEmptyInCsv)
{
    SorSketch sketch = SorSketch::plain();
    sketch.leftOut = {"FxdParams"};
    sketch.scaleFactor = 500;
    const QList<QByteArray> lines = run({"--csv", save("trace.sor", sketch)}).out.split('\n');
    EXPECT_EQ(lines[2], ",28.767500");
}

TEST_F(OtdrInfo, WritesAVersion2FileThatReadsTheSame)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = 1;
    const QString in = save("old.sor", sketch);
    const QString out = at("new.sor");
    const Outcome outcome = run({"--write", out, in});
    EXPECT_EQ(outcome.code, 0) << outcome.err.toStdString();
    EXPECT_EQ(requiredContents(out).left(4), QByteArray("Map\0", 4));
    QJsonObject before = json(in);
    QJsonObject after = json(out);
    EXPECT_EQ(after["format_version"].toInt(), 2);
    EXPECT_EQ(after["checksum_ok"], QJsonValue(true));
    for (const char* own : {"file", "format_version"}) {
        before.remove(own);
        after.remove(own);
    }
    EXPECT_EQ(before, after);
    EXPECT_EQ(run({"--csv", in}).out, run({"--csv", out}).out);
}

TEST_F(OtdrInfo, WritesNoMoreThanTheFileTells)
{
    for (const char* block : {"GenParams", "SupParams", "FxdParams", "KeyEvents"}) {
        SorSketch sketch = SorSketch::plain();
        sketch.version = 1;
        sketch.leftOut = {block};
        const QString in = save("bare.sor", sketch);
        const QString out = at("new.sor");
        ASSERT_EQ(run({"--write", out, in}).code, 0) << block;
        QJsonObject before = json(in);
        QJsonObject after = json(out);
        for (const char* own : {"file", "format_version"}) {
            before.remove(own);
            after.remove(own);
        }
        EXPECT_EQ(before, after) << block;
    }
}

TEST_F(OtdrInfo, WritesAVersion2FileBackByteForByteOverItself)
{
    const QString path = save("trace.sor", SorSketch::plain());
    const QByteArray before = requiredContents(path);
    EXPECT_EQ(run({"--write", at("copy.sor"), path}).code, 0);
    EXPECT_EQ(requiredContents(at("copy.sor")), before);
    EXPECT_EQ(run({"--write", path, path}).code, 0);
    EXPECT_EQ(requiredContents(path), before);
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden),
              QStringList({"copy.sor", "trace.sor"}));
}

TEST_F(OtdrInfo, LeavesTheOldOutputWhereTheInputIsBad)
{
    const QString out = save("out.sor", ByteSketch().text("precious").done);
    const Outcome outcome = run({"--write", out, at("missing.sor")});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(requiredContents(out), "precious");
    EXPECT_EQ(run({"--write", at("no/directory/x.sor"), save("in.sor", SorSketch::plain())}).code,
              1);
}

TEST_F(OtdrInfo, ShowsASummaryWithTheEventTable)
{
    SorSketch sketch = SorSketch::plain();
    sketch.gen.locationA = "A\x1B[31m\nB"; // would colour the terminal
    sketch.tail = Bytes(3);
    const Outcome outcome = run({save("trace.sor", sketch)});
    EXPECT_EQ(outcome.code, 0);
    const std::string text = outcome.out.toStdString();
    EXPECT_THAT(text, HasSubstr("trace.sor: trace file, version 2"));
    EXPECT_THAT(text, HasSubstr("1550 nm"));
    EXPECT_THAT(text, HasSubstr("1F9999"));
    EXPECT_THAT(text, HasSubstr("3063.27"));
    EXPECT_THAT(text, HasSubstr("note: 3 bytes follow the last block"));
    EXPECT_THAT(text, HasSubstr("A [31m B, South"));
}

TEST_F(OtdrInfo, EachEventIsALineOfItsOwn)
{
    const SorSketch sketch = SorSketch::plain();
    const QStringList lines =
        QString(run({save("trace.sor", sketch)}).out).split('\n', Qt::KeepEmptyParts);
    const auto events = static_cast<int>(sketch.keyEvents.events.size());
    const int header = lines.indexOf(QRegularExpression(" *no kind code .*"));
    ASSERT_GE(header, 0);
    ASSERT_GT(lines.size(), header + events);
    for (int i = 1; i <= events; ++i) {
        EXPECT_TRUE(lines[header + i].startsWith(QString("%1 ").arg(i, 5)))
            << lines[header + i].toStdString();
    }
}

TEST_F(OtdrInfo, MarksAReflectanceThatIsABoundAndExplainsTheMark)
{
    SorSketch sketch = SorSketch::plain();
    const std::string measured = run({save("trace.sor", sketch)}).out.toStdString();
    EXPECT_THAT(measured, HasSubstr("-14.700"));
    EXPECT_THAT(measured, Not(HasSubstr("*"))) << "no receiver was saturated";
    sketch.keyEvents.events[2].code = {'2', 'E', '9', '9', '9', '9'};
    EXPECT_THAT(run({save("trace.sor", sketch)}).out.toStdString(), HasSubstr("-14.700*"));
    EXPECT_THAT(run({"--help"}).out.toStdString(), HasSubstr("refl. dB: *"));
    sketch.keyEvents.events[2].reflectance = 0;
    const std::string untold = run({save("trace.sor", sketch)}).out.toStdString();
    EXPECT_THAT(untold, HasSubstr("2E9999"));
    EXPECT_THAT(untold, Not(HasSubstr("-*"))) << "a dash is no bound";
}

TEST_F(OtdrInfo, TellsAWrongCommandLineByItsExitCode)
{
    const QString file = save("trace.sor", SorSketch::plain());
    const QStringList wrong[] = {{},
                                 {"--json"},
                                 {"--nonsense", file},
                                 {"--json", "--csv", file},
                                 {"--csv", file, file},
                                 {"--write"},
                                 {"--write", at("out.sor")},
                                 {"--write", at("out.sor"), file, file},
                                 {"--write", at("out.sor"), "--json", file}};
    for (const QStringList& arguments : wrong) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.code, 2) << arguments.join(' ').toStdString();
        EXPECT_EQ(outcome.err.count('\n'), 1) << outcome.err.toStdString();
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_FALSE(QFile::exists(at("out.sor")));
}

TEST_F(OtdrInfo, ExplainsItself)
{
    const Outcome help = run({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_THAT(help.out.toStdString(), HasSubstr("--write"));
    EXPECT_THAT(help.out.toStdString(), HasSubstr("checksum_ok"));
    const Outcome version = run({"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_EQ(version.out, "otdrinfo " WAVEFORM_VERSION "\n");
}

TEST_F(OtdrInfo, TakesFileNamesByteForByte)
{
    const QString path = save(QString::fromUtf8("m\u00E4rz \u2713.sor"), SorSketch::plain());
    EXPECT_EQ(json(path)["file"].toString(), path);
    EXPECT_EQ(run({"--write", path + "2", path}).code, 0);
    EXPECT_TRUE(QFile::exists(path + "2"));
}

TEST_F(OtdrInfo, SurvivesTheMuseum)
{
    const QDir museum(QStringLiteral(WAVEFORM_TEST_DATA "/bad"));
    const QStringList names = museum.entryList({"*.sor"}, QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        for (const char* form : {"--json", "--csv"}) {
            const Outcome outcome = run({form, museum.filePath(name)});
            EXPECT_TRUE(outcome.code == 0 || outcome.code == 1) << name.toStdString();
            EXPECT_EQ(outcome.code == 1, outcome.err.count('\n') == 1) << outcome.err.toStdString();
        }
    }
}

TEST_F(OtdrInfo, ReadsRealTraces)
{
    const QDir traces(QStringLiteral(WAVEFORM_TRACES));
    if (!traces.exists()) {
        GTEST_SKIP() << "no real traces beside this checkout";
    }
    for (const QString& name : traces.entryList({"*.sor"}, QDir::Files)) {
        const QString copy = at("copy.sor");
        EXPECT_EQ(run({"--write", copy, traces.filePath(name)}).code, 0) << name.toStdString();
        QJsonObject before = json(traces.filePath(name));
        QJsonObject after = json(copy);
        for (const char* own : {"file", "format_version"}) {
            before.remove(own);
            after.remove(own);
        }
        EXPECT_EQ(before, after) << name.toStdString();
    }
}

} // namespace
