#include "platform/otdr/core/constants.h"
#include "tests/programs/wfevfind/finderrun.h"

#include <QJsonArray>

#include <gmock/gmock.h>

namespace {

using namespace testing_support;
using namespace wfevfind_test;
using testing::UnorderedElementsAreArray;

QJsonObject eventOf(const QJsonObject& object, int number)
{
    return object["events"].toArray().at(number).toObject();
}

class EvFindOutput : public testing::Test
{
protected:
    TraceFiles files;
};

TEST_F(EvFindOutput, TellsEachEventInALineInOrderOfDistance)
{
    const TraceBuilder builder = link();
    const QList<Found> lines = linesOf(files.writeSnapshot("snapshot.bin", builder));
    ASSERT_EQ(kindsOf(lines), "rnpe");
    const Length places[] = {3_km, 6_km, 9_km, 12_km};
    for (int i = 0; i < 4; ++i) {
        EXPECT_NEAR(static_cast<double>(lines[i].sample), builder.indexOf(places[i]), 3.0) << i;
    }
}

TEST_F(EvFindOutput, SnapshotAndTraceFileOfTheSameSamplesGiveTheSame)
{
    const QString snapshot = files.writeSnapshot("snapshot.bin", link());
    const QString sor = files.write("trace.sor", sorOf(link()));
    EXPECT_EQ(run({"-i", sor}).out, run({"-i", snapshot}).out);
    EXPECT_EQ(kindsOf(linesOf(sor)), "rnpe");
}

TEST_F(EvFindOutput, CountsSamplesFromTheFirstOfTheRecord)
{
    const TraceBuilder builder = link().front(400); // dark before the port
    const QList<Found> lines = linesOf(files.writeSnapshot("snapshot.bin", builder, 10.0, -4000.0));
    ASSERT_EQ(kindsOf(lines), "rnpe");
    EXPECT_NEAR(static_cast<double>(lines[0].sample), builder.indexOf(3_km), 3.0);
    EXPECT_NEAR(builder.indexOf(3_km), 400.0 + link().indexOf(3_km), 1e-6);
}

/// Where the zero of the distances lies between two samples moves no event in the record.
TEST_F(EvFindOutput, SamplesDoNotDependOnWhereZeroLies)
{
    const QByteArray lines = run({"-i", files.writeSnapshot("plain.bin", link())}).out;
    for (double part = 0.1; part < 1.0; part += 0.1) {
        const QString moved = files.writeSnapshot("moved.bin", link(), 10.0, -10.0 * part);
        EXPECT_EQ(run({"-i", moved}).out, lines) << part;
    }
}

TEST_F(EvFindOutput, LeavesAnEndThatIsNotReachedOut)
{
    const TraceBuilder builder = TraceBuilder().fibre(8_km).splice(4_km, 0.3_dB).noise(0.01_dB, 4);
    const QString path = files.writeSnapshot("snapshot.bin", builder);
    EXPECT_EQ(kindsOf(linesOf(path)), "n");
    EXPECT_TRUE(jsonOf(path)["fibre_end_m"].isNull());
}

TEST_F(EvFindOutput, AFibreWithNothingOnItIsAnEndAlone)
{
    const TraceBuilder bare =
        TraceBuilder().fibre(12_km).behind(3000).noise(0.01_dB, 4).noiseFloor(8_dB);
    EXPECT_EQ(kindsOf(linesOf(files.writeSnapshot("snapshot.bin", bare))), "e");
}

TEST_F(EvFindOutput, GivesTheJsonObjectWithTheseFields)
{
    const TraceBuilder builder = link();
    const QString path = files.writeSnapshot("snapshot.bin", builder);
    const QJsonObject object = jsonOf(path);
    EXPECT_THAT(
        object.keys(),
        UnorderedElementsAreArray(QStringList {"file", "samples", "spacing_m", "noise_floor_db",
                                               "fibre_end_m", "span_loss_db", "orl_db", "events"}));
    const double metresPerSample = 10.0 * otdr::metresPerNs(otdr::kDefaultGroupIndex);
    EXPECT_EQ(object["file"].toString(), path);
    EXPECT_EQ(object["samples"].toInt(), static_cast<int>(builder.counts().size()));
    EXPECT_NEAR(object["spacing_m"].toDouble(), metresPerSample, 1e-9);
    EXPECT_NEAR(object["noise_floor_db"].toDouble(), 8.0, 3.0);
    EXPECT_NEAR(object["fibre_end_m"].toDouble(), 12000.0, 3.0);
    EXPECT_NEAR(object["span_loss_db"].toDouble(), 12 * 0.2 + 0.5 + 0.3 - 0.2, 0.05);
    EXPECT_GT(object["orl_db"].toDouble(), 20.0);
    EXPECT_LT(object["orl_db"].toDouble(), 50.0);
    EXPECT_EQ(object["events"].toArray().size(), 5);
}

TEST_F(EvFindOutput, GivesEachEventInJsonWithWhatWasMeasured)
{
    const QJsonObject object = jsonOf(files.writeSnapshot("snapshot.bin", link()));
    ASSERT_EQ(object["events"].toArray().size(), 5);
    const QJsonObject start = eventOf(object, 0);
    EXPECT_THAT(
        start.keys(),
        UnorderedElementsAreArray(QStringList {"kind", "sample", "distance_m", "loss_db",
                                               "reflectance_db", "attenuation_before_db_per_km"}));
    EXPECT_EQ(start["kind"].toString(), "s");
    EXPECT_EQ(start["sample"].toInt(), 0);
    EXPECT_NEAR(start["distance_m"].toDouble(), 0.0, 1e-6);
    EXPECT_TRUE(start["attenuation_before_db_per_km"].isNull());
    const QJsonObject connector = eventOf(object, 1);
    EXPECT_EQ(connector["kind"].toString(), "r");
    EXPECT_NEAR(connector["distance_m"].toDouble(), 3000.0, 3.0);
    EXPECT_NEAR(connector["loss_db"].toDouble(), 0.5, 0.02);
    EXPECT_LT(connector["reflectance_db"].toDouble(), -30.0);
    EXPECT_NEAR(connector["attenuation_before_db_per_km"].toDouble(), 0.2, 0.01);
    const QJsonObject splice = eventOf(object, 2);
    EXPECT_EQ(splice["kind"].toString(), "n");
    EXPECT_NEAR(splice["loss_db"].toDouble(), 0.3, 0.02);
    EXPECT_TRUE(splice.contains("reflectance_db") && splice["reflectance_db"].isNull());
    EXPECT_EQ(eventOf(object, 3)["kind"].toString(), "p");
    EXPECT_NEAR(eventOf(object, 3)["loss_db"].toDouble(), -0.2, 0.02);
    EXPECT_EQ(eventOf(object, 4)["kind"].toString(), "e");
    EXPECT_TRUE(eventOf(object, 4)["loss_db"].isNull());
}

TEST_F(EvFindOutput, JsonAndLinesNameTheSameEvents)
{
    const QString path = files.writeSnapshot("snapshot.bin", link(), 10.0, -12345.0);
    const QList<Found> lines = linesOf(path);
    const QJsonArray events = jsonOf(path)["events"].toArray();
    QStringList fromJson;
    for (const QJsonValue& event : events) {
        if (event["kind"].toString() != "s") {
            fromJson << event["kind"].toString() + QString::number(event["sample"].toInt());
        }
    }
    QStringList fromLines;
    for (const Found& line : lines) {
        fromLines << line.kind + QString::number(line.sample);
    }
    EXPECT_FALSE(lines.isEmpty());
    EXPECT_EQ(fromJson, fromLines);
}

TEST_F(EvFindOutput, TellsTheSpanAsItsEventsDo)
{
    const QJsonObject object = jsonOf(files.writeSnapshot("snapshot.bin", link(), 10.0, -12343.0));
    const QJsonArray events = object["events"].toArray();
    EXPECT_EQ(object["fibre_end_m"].toDouble(), events.last()["distance_m"].toDouble());
}

TEST_F(EvFindOutput, TellsNoSpanWhereItsEndIsNotReached)
{
    const TraceBuilder builder = TraceBuilder().fibre(8_km).splice(4_km, 0.3_dB).noise(0.01_dB, 4);
    const QJsonObject object = jsonOf(files.writeSnapshot("snapshot.bin", builder));
    EXPECT_TRUE(object["fibre_end_m"].isNull());
    EXPECT_TRUE(object["span_loss_db"].isNull()) << "what is saved of such a trace has none, too";
    EXPECT_TRUE(object["orl_db"].isDouble()) << "that of the record";
}

TEST_F(EvFindOutput, TakesDistancesOfATraceFileByItsOwnIndex)
{
    SorSketch sketch = sorOf(link());
    sketch.fxd.groupIndex = 150000;
    const QJsonObject object = jsonOf(files.write("trace.sor", sketch));
    EXPECT_NEAR(object["spacing_m"].toDouble(), 10.0 * otdr::metresPerNs(1.5), 1e-6);
    EXPECT_NEAR(object["fibre_end_m"].toDouble(), 12000.0 * otdr::kDefaultGroupIndex / 1.5, 3.0);
}

TEST_F(EvFindOutput, DoesNotLookAtTheEventsThatAFileHolds)
{
    SorSketch with = sorOf(link());
    with.leftOut.clear();
    with.keyEvents.events = {keyEvent(1, 0, "1F9999"), keyEvent(2, 7777, "0F9999", 120),
                             keyEvent(3, 60'000, "1E9999")};
    EXPECT_EQ(run({"-i", files.write("with.sor", with)}).out,
              run({"-i", files.write("without.sor", sorOf(link()))}).out);
}

TEST_F(EvFindOutput, ATraceTooShortToTellAnythingHasNoEvents)
{
    const QString path = files.writeSnapshot("short.bin", TraceBuilder().fibre(Length {20.0}));
    EXPECT_TRUE(linesOf(path).isEmpty());
    const QJsonObject object = jsonOf(path);
    EXPECT_EQ(object["events"].toArray().size(), 0);
    for (const char* key : {"noise_floor_db", "fibre_end_m", "span_loss_db", "orl_db"}) {
        EXPECT_TRUE(object.contains(key) && object[key].isNull()) << key;
    }
}

} // namespace
