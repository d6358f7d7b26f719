#include "programs/wfgather/fibrefile.h"
#include "tests/support/requiredcontents.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <cmath>

namespace {

using gather::Fibre;
using gather::parseFibre;
using otdr::ErrorCode;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kSection = R"({"length_m": 1000, "attenuation_db_per_km": 0.2})";

otdr::Result<Fibre> parse(const QByteArray& json)
{
    return parseFibre(json, "fibre.json");
}

/// A fibre of one section of 1 km and what else stands in the object.
otdr::Result<Fibre> withMore(const QByteArray& more)
{
    return parse(QByteArray(R"({"sections": [)") + kSection + "], " + more + "}");
}

std::string errorOf(const otdr::Result<Fibre>& fibre)
{
    return fibre ? "none" : fibre.error().message;
}

std::string sectionError(const QByteArray& section)
{
    return errorOf(parse(R"({"sections": [)" + section + "]}"));
}

std::string eventError(const QByteArray& event)
{
    return errorOf(withMore(R"("events": [)" + event + "]"));
}

QByteArray demoJson()
{
    return testing_support::requiredContents(WAVEFORM_FIBRES "/demo-link.json");
}

} // namespace

TEST(FibreFile, ReadsEveryQuantity)
{
    const auto fibre = parse(R"({ "name": "Demo link",
        "ior": {"1310": 1.4676, "1550": 1.4682},
        "sections": [ {"length_m": 5020.5, "attenuation_db_per_km": {"1310": 0.34, "1550": 0.20},
                       "backscatter_db": {"1310": -79.5, "1550": -82.0}} ],
        "events": [ {"at_m": 3000.0, "loss_db": {"1310": 0.02, "1550": 0.35}, "kind": "bend"},
                    {"at_m": 1000.0, "loss_db": 0.15, "reflectance_db": -52.0,
                     "kind": "connector"} ],
        "end_reflectance_db": -14.7,
        "dynamic_range_db": 38.0 })");
    ASSERT_TRUE(fibre) << fibre.error().message;
    EXPECT_EQ(fibre->name, "Demo link");
    EXPECT_EQ(fibre->ior.at(1550), 1.4682);
    ASSERT_EQ(fibre->sections.size(), 1U);
    EXPECT_EQ(fibre->sections[0].length_m, 5020.5);
    EXPECT_EQ(fibre->sections[0].attenuation_dBPerKm.at(1310), 0.34);
    EXPECT_EQ(fibre->sections[0].backscatter_dB.at(1550), -82.0);
    ASSERT_EQ(fibre->events.size(), 2U); // in order of distance
    EXPECT_EQ(fibre->events[0].at_m, 1000.0);
    EXPECT_EQ(fibre->events[0].loss_dB.at(1310), 0.15);
    EXPECT_EQ(fibre->events[0].reflectance_dB.at(1550), -52.0);
    EXPECT_EQ(fibre->events[0].kind, "connector");
    EXPECT_EQ(fibre->events[1].loss_dB.at(1550), 0.35);
    EXPECT_TRUE(fibre->events[1].reflectance_dB.empty());
    EXPECT_EQ(fibre->endReflectance_dB.at(1310), -14.7);
    EXPECT_EQ(fibre->dynamicRange_dB.at(1310), 38.0);
}

TEST(FibreFile, WhatMayBeMissingIsThatOfOrdinaryFibre)
{
    const auto fibre = parse(QByteArray(R"({"sections": [)") + kSection + "]}");
    ASSERT_TRUE(fibre) << fibre.error().message;
    EXPECT_EQ(fibre->name, "");
    EXPECT_EQ(fibre->ior.at(1310), 1.4677);
    EXPECT_EQ(fibre->ior.at(1550), 1.4683);
    EXPECT_EQ(fibre->sections[0].backscatter_dB.at(1310), -79.5);
    EXPECT_EQ(fibre->sections[0].backscatter_dB.at(1550), -81.9);
    EXPECT_TRUE(fibre->events.empty());
    EXPECT_TRUE(std::isnan(fibre->endReflectance_dB.at(1550)));
    EXPECT_EQ(fibre->dynamicRange_dB.at(1550), 38.0);
    EXPECT_TRUE(withMore(R"("events": null, "end_reflectance_db": null, "colour": [1, 2])"));
}

TEST(FibreFile, EveryDemoFibreIsGood)
{
    const QDir directory(WAVEFORM_FIBRES);
    const QStringList names = directory.entryList({"*.json"});
    EXPECT_GE(names.size(), 5);
    for (const QString& name : names) {
        const auto fibre = gather::readFibreFile(directory.filePath(name).toStdString());
        ASSERT_TRUE(fibre) << fibre.error().message;
        EXPECT_FALSE(fibre->name.empty());
        EXPECT_FALSE(fibre->events.empty());
    }
}

TEST(FibreFile, TheBuiltInFibreIsTheDemoLink)
{
    const auto fibre = gather::demoFibre();
    ASSERT_TRUE(fibre) << fibre.error().message;
    EXPECT_EQ(fibre->name, "Demo link");
    EXPECT_GT(fibre->length_m(), 7000.0);
    EXPECT_LT(fibre->length_m(), 9000.0);
    EXPECT_EQ(fibre->endReflectance_dB.at(1310), -14.7);
}

TEST(FibreFile, EveryTruncationIsRefused)
{
    const QByteArray json = demoJson().trimmed();
    ASSERT_TRUE(parse(json));
    for (int length = 0; length < json.size(); ++length) {
        const auto fibre = parse(json.left(length));
        ASSERT_FALSE(fibre) << length;
        EXPECT_EQ(fibre.error().code, ErrorCode::Damaged);
        EXPECT_THAT(fibre.error().message, StartsWith("fibre.json: "));
    }
}

TEST(FibreFile, NoChangedByteDoesHarm)
{
    const QByteArray json = demoJson();
    for (int i = 0; i < json.size(); ++i) {
        for (const char byte : {'\0', '9', '-', '"', '{', '\xff'}) {
            QByteArray changed = json;
            changed[i] = byte;
            const auto fibre = parse(changed);
            EXPECT_TRUE(fibre || !fibre.error().message.empty());
        }
    }
}

TEST(FibreFile, WhatIsNoObjectIsRefused)
{
    for (const char* json : {"", " ", "[]", "null", "7", "\"fibre\"", "{", "}", "{]", "[{}]",
                             "{\"sections\": [}", "{} {}"}) {
        EXPECT_FALSE(parse(json)) << json;
    }
}

TEST(FibreFile, DeepNestingIsRefused)
{
    EXPECT_FALSE(parse(QByteArray(100000, '[')));
    EXPECT_FALSE(parse(QByteArray("{\"a\":").repeated(100000)));
    const QByteArray deep = QByteArray("[").repeated(500) + QByteArray("]").repeated(500);
    EXPECT_THAT(errorOf(parse("{\"sections\": [" + deep + "]}")), HasSubstr("sections[0]: "));
}

TEST(FibreFile, AFibreHasSections)
{
    EXPECT_THAT(errorOf(parse("{}")), HasSubstr("sections: a fibre has at least one"));
    EXPECT_THAT(errorOf(parse(R"({"sections": []})")), HasSubstr("sections: "));
    EXPECT_THAT(errorOf(parse(R"({"sections": {}})")), HasSubstr("sections: not a list"));
    EXPECT_THAT(sectionError("7"), HasSubstr("sections[0]: not an object"));
    EXPECT_THAT(sectionError(QByteArray(kSection) + ", []"), HasSubstr("sections[1]: "));
}

TEST(FibreFile, ASectionHasALengthAndAnAttenuation)
{
    const auto section = [](const QByteArray& length, const QByteArray& attenuation) {
        return sectionError("{\"length_m\": " + length
                            + ", \"attenuation_db_per_km\": " + attenuation + "}");
    };
    EXPECT_EQ(section("1000", "0.2"), "none");
    for (const char* length :
         {"0", "-5", "1e7", "1e308", "1e999", "\"1000\"", "[1]", "{}", "true"}) {
        EXPECT_THAT(section(length, "0.2"),
                    testing::AnyOf(HasSubstr("sections[0].length_m: "), HasSubstr("at byte ")))
            << length;
    }
    for (const char* attenuation :
         {"-0.1", "1e4", R"("x")", "[]", "{}", R"({"1310": "x"})", R"({"x": 0.2})", R"({"5": 0.2})",
          R"({"1310": null})", R"({"99999999999": 0.2})", "null", "false"}) {
        EXPECT_THAT(section("1000", attenuation), HasSubstr("sections[0].attenuation_db_per_km"))
            << attenuation;
    }
    EXPECT_THAT(sectionError(R"({"attenuation_db_per_km": 0.2})"),
                HasSubstr("sections[0].length_m: missing"));
    EXPECT_THAT(sectionError(R"({"length_m": 5})"),
                HasSubstr("sections[0].attenuation_db_per_km: missing"));
    EXPECT_THAT(
        sectionError(R"({"length_m": 5, "attenuation_db_per_km": 1, "backscatter_db": 80})"),
        HasSubstr("sections[0].backscatter_db: "));
}

TEST(FibreFile, TheSumOfTheSectionsHasALimit)
{
    const QByteArray section = R"({"length_m": 600000, "attenuation_db_per_km": 0.2})";
    const QByteArray rest = R"({"length_m": 400000, "attenuation_db_per_km": 0.2})";
    EXPECT_EQ(sectionError(section), "none");
    EXPECT_EQ(sectionError(section + "," + rest), "none");
    EXPECT_THAT(sectionError(section + "," + section), HasSubstr("sections: longer than 1000 km"));
}

TEST(FibreFile, AnEventStandsOnTheFibre)
{
    EXPECT_EQ(eventError(R"({"at_m": 0})"), "none");
    EXPECT_EQ(eventError(R"({"at_m": 1000})"), "none");
    EXPECT_THAT(eventError(R"({"at_m": 1000.1})"), HasSubstr("events[0].at_m: "));
    EXPECT_THAT(eventError(R"({"at_m": -0.1})"), HasSubstr("events[0].at_m: "));
    EXPECT_THAT(eventError(R"({"loss_db": 1})"), HasSubstr("events[0].at_m: missing"));
    EXPECT_THAT(eventError(R"({"at_m": "5"})"), HasSubstr("events[0].at_m: not a number"));
    EXPECT_THAT(eventError("5"), HasSubstr("events[0]: not an object"));
    EXPECT_THAT(errorOf(withMore("\"events\": 5")), HasSubstr("events: not a list"));
}

TEST(FibreFile, FiguresOfAnEventAreChecked)
{
    EXPECT_THAT(eventError(R"({"at_m": 5, "loss_db": -11})"), HasSubstr("events[0].loss_db: "));
    EXPECT_THAT(eventError(R"({"at_m": 5, "loss_db": 101})"), HasSubstr("events[0].loss_db: "));
    EXPECT_THAT(eventError(R"({"at_m": 5, "loss_db": {"1310": 1e300}})"),
                HasSubstr("events[0].loss_db.1310: "));
    EXPECT_THAT(eventError(R"({"at_m": 5, "reflectance_db": 0.5})"),
                HasSubstr("events[0].reflectance_db: "));
    EXPECT_THAT(eventError(R"({"at_m": 5, "reflectance_db": []})"),
                HasSubstr("events[0].reflectance_db: not a number"));
    EXPECT_THAT(eventError(R"({"at_m": 5, "kind": 5})"), HasSubstr("events[0].kind: not a text"));
    EXPECT_THAT(eventError(R"({"at_m": 5, "kind": ")" + QByteArray(201, 'x') + "\"}"),
                HasSubstr("events[0].kind: longer"));
}

TEST(FibreFile, FiguresOfTheFibreAreChecked)
{
    EXPECT_THAT(errorOf(withMore("\"ior\": 1.0")), HasSubstr("ior: "));
    EXPECT_THAT(errorOf(withMore("\"ior\": \"1.47\"")), HasSubstr("ior: not a number"));
    EXPECT_THAT(errorOf(withMore("\"ior\": {\"1310\": 15}")), HasSubstr("ior.1310: "));
    EXPECT_THAT(errorOf(withMore("\"ior\": {}")), HasSubstr("ior: no value at any wavelength"));
    EXPECT_THAT(errorOf(withMore("\"end_reflectance_db\": 14.7")), HasSubstr("end_reflectance_db"));
    EXPECT_THAT(errorOf(withMore("\"dynamic_range_db\": 0")), HasSubstr("dynamic_range_db: "));
    EXPECT_THAT(errorOf(withMore("\"dynamic_range_db\": 81")), HasSubstr("dynamic_range_db: "));
    EXPECT_THAT(errorOf(withMore("\"name\": []")), HasSubstr("name: not a text"));
    const QByteArray longest(200, 'x');
    EXPECT_EQ(errorOf(withMore("\"name\": \"" + longest + "\"")), "none");
    EXPECT_THAT(errorOf(withMore("\"name\": \"" + longest + "x\"")),
                HasSubstr("name: longer than 200 characters"));
}

TEST(FibreFile, TooManyEventsAreRefused)
{
    const QByteArray one = "{\"at_m\": 5},";
    const auto events = [&](int count) {
        QByteArray list = one.repeated(count);
        list.chop(1);
        return errorOf(withMore("\"events\": [" + list + "]"));
    };
    EXPECT_EQ(events(10000), "none");
    EXPECT_THAT(events(10001), HasSubstr("events: more than 10000"));
}

TEST(FibreFile, GainsOfAllEventsHaveALimit)
{
    const auto gains = [](int count) {
        QByteArray list =
            QByteArray(R"({"at_m": 5, "loss_db": {"1310": -9, "1550": -10}},)").repeated(count);
        list.chop(1);
        return errorOf(withMore("\"events\": [" + list + "]"));
    };
    EXPECT_EQ(gains(10), "none");
    EXPECT_THAT(gains(11), HasSubstr("events: they gain more than 100 dB"));
}

TEST(FibreFile, ATooLargeFileIsNotParsed)
{
    const QByteArray blanks(static_cast<int>(gather::kLargestFibreFile) + 1, ' ');
    EXPECT_EQ(parse(blanks).error().code, ErrorCode::TooLarge);
    QTemporaryDir directory;
    QFile file(directory.filePath("fibre.json"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(qint64 {1} << 33));
    EXPECT_EQ(gather::readFibreFile(file.fileName().toStdString()).error().code,
              ErrorCode::TooLarge);
}

TEST(FibreFile, WhatIsNotThereIsAnError)
{
    EXPECT_EQ(gather::readFibreFile("/nowhere/fibre.json").error().code, ErrorCode::CannotOpen);
    EXPECT_EQ(gather::readFibreFile(WAVEFORM_FIBRES).error().code, ErrorCode::CannotOpen);
    EXPECT_EQ(gather::readFibreFile("/dev/zero").error().code, ErrorCode::CannotOpen);
}
