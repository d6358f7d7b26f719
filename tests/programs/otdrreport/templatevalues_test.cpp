#include "platform/otdr/reflectogram.h"
#include "programs/otdrreport/reporttext.h"
#include "programs/otdrreport/templatevalues.h"
#include "tests/support/tracefiles.h"

#include <QFile>

#include <gmock/gmock.h>

#include <algorithm>

namespace {

using otdrreport::dash;
using testing_support::keyEvent;
using testing_support::SorSketch;
using testing_support::TraceFiles;

QVariantHash values(const SorSketch& sketch)
{
    const TraceFiles files;
    const Reflectogram refl(files.write("plain.sor", sketch));
    return otdrreport::templateValues(otdrreport::reportOf(*refl.state()), "png", "plain.png");
}

QVariant at(const QVariantHash& values, const QString& group, const QString& name)
{
    return values[group].toHash()[name];
}

QVariantHash event(const QVariantHash& values, int index)
{
    return values["events"].toList()[index].toHash();
}

TEST(TemplateValues, AreTextsReadyToBeShownWithTheirNumbers)
{
    const QVariantHash all = values(SorSketch::plain());
    EXPECT_EQ(at(all, "parameters", "wavelength").toString(), "1550");
    EXPECT_EQ(at(all, "parameters", "ior").toString(), "1.46800");
    EXPECT_EQ(at(all, "summary", "loss").toString(), "3.120");
    EXPECT_DOUBLE_EQ(at(all, "summary", "loss_db").toDouble(), 3.12);
    EXPECT_EQ(at(all, "summary", "length_in_km").toString(), "3.063");
    EXPECT_EQ(at(all, "trace", "date").toString(), "2023-11-14 22:13:20");
    EXPECT_EQ(event(all, 1)["loss"].toString(), "0.120");
    EXPECT_EQ(event(all, 1)["section"].toHash()["length"].toString(), "1021.1");
}

TEST(TemplateValues, UnknownIsADashWithoutANumber)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.summary = {};
    sketch.fxd.dateTime_s = 0;
    sketch.fxd.averages = 0;
    const QVariantHash all = values(sketch);
    EXPECT_EQ(at(all, "summary", "loss").toString(), dash());
    EXPECT_FALSE(at(all, "summary", "loss_db").isValid());
    EXPECT_EQ(at(all, "trace", "date").toString(), dash());
    EXPECT_EQ(at(all, "parameters", "averages").toString(), dash());
    EXPECT_EQ(event(all, 1)["reflectance"].toString(), dash());
    EXPECT_EQ(event(all, 0)["loss"].toString(), dash());
}

TEST(TemplateValues, KindsHaveNames)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events.insert(
        sketch.keyEvents.events.begin() + 2,
        {keyEvent(3, 80'000, "0F9999", -90), keyEvent(4, 100'000, "1F9999", 300, -40'000)});
    sketch.keyEvents.events[4] = keyEvent(5, 150'000, "2E9999", 0, -14'700);
    const QVariantHash all = values(sketch);
    EXPECT_EQ(event(all, 0)["kind_name"].toString(), "Start of the span");
    EXPECT_EQ(event(all, 1)["kind_name"].toString(), "Non-reflective");
    EXPECT_EQ(event(all, 2)["kind_name"].toString(), "Gainer");
    EXPECT_EQ(event(all, 3)["kind_name"].toString(), "Reflective");
    EXPECT_EQ(event(all, 4)["kind_name"].toString(), "End of the fibre");
    EXPECT_TRUE(event(all, 4)["saturated"].toBool());
    EXPECT_FALSE(event(all, 3)["saturated"].toBool());
    sketch.keyEvents.events[4] = keyEvent(5, 150'000, "2O9999");
    EXPECT_EQ(event(values(sketch), 4)["kind_name"].toString(), "End of the trace");
}

bool isTextList(const QVariant& value)
{
    switch (value.type()) {
    case QVariant::StringList:
        return true;
    case QVariant::Hash: {
        const QVariantHash hash = value.toHash();
        return std::any_of(hash.begin(), hash.end(), isTextList);
    }
    case QVariant::List: {
        const QVariantList list = value.toList();
        return std::any_of(list.begin(), list.end(), isTextList);
    }
    default:
        return false;
    }
}

TEST(TemplateValues, ListsAreOfValuesSoThatATemplateCanAskWhetherThereAreAny)
{
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.groupIndex = 0;
    EXPECT_FALSE(isTextList(values(sketch))) << "only a list of one text counts as true";
}

TEST(TemplateValues, EventBesideTheRecordHasNoMark)
{
    SorSketch sketch = SorSketch::plain();
    sketch.keyEvents.events.push_back(keyEvent(4, 90'000'000, "0F9999", 100));
    const QVariantHash all = values(sketch);
    EXPECT_TRUE(event(all, 1).contains("left_percent"));
    EXPECT_FALSE(event(all, 3).contains("left_percent"));
}

TEST(TemplateValues, ChartWithoutDistancesHasNeitherMarksNorTicksOfThem)
{
    SorSketch sketch = SorSketch::plain();
    sketch.fxd.pulses[0].dataSpacing = 0;
    sketch.fxd.acquisitionRange = 0;
    const QVariantHash all = values(sketch);
    EXPECT_EQ(at(all, "chart", "distance_unit").toString(), "");
    EXPECT_TRUE(at(all, "chart", "distance_ticks").toList().isEmpty());
    EXPECT_FALSE(at(all, "chart", "level_ticks").toList().isEmpty());
    EXPECT_FALSE(event(all, 1).contains("left_percent"));
}

void collectNames(const QVariant& value, const QString& path, QStringList& names)
{
    if (value.type() == QVariant::Hash) {
        const QVariantHash hash = value.toHash();
        for (auto it = hash.begin(); it != hash.end(); ++it) {
            collectNames(it.value(), path.isEmpty() ? it.key() : path + "." + it.key(), names);
        }
    } else if (value.type() == QVariant::List && path != "events") {
        collectNames(value.toList().value(0), path, names);
    } else if (value.type() == QVariant::List) {
        const QVariantList events = value.toList();
        for (const QVariant& entry : events) {
            collectNames(entry, "event", names);
        }
    } else {
        names << path;
    }
}

TEST(TemplateValues, EachIsDocumented)
{
    QFile page(QStringLiteral(WAVEFORM_DOCS "/report-templates.md"));
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(page.readAll());
    QStringList names;
    collectNames(values(SorSketch::plain()), {}, names);
    names.removeDuplicates();
    ASSERT_GT(names.size(), 60);
    for (const QString& name : qAsConst(names)) {
        EXPECT_TRUE(text.contains("`" + name + "`")) << qPrintable(name);
    }
}

} // namespace
