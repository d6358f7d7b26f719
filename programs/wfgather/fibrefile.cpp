#include "programs/wfgather/fibrefile.h"

#include "platform/otdr/usualfibre.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

// Has to stand outside of any namespace.
static void loadResources()
{
    Q_INIT_RESOURCE(fibres);
}

namespace gather {

namespace {

constexpr int kMostEvents = 10000;
constexpr int kMostSections = 10000;
constexpr int kLongestText = 200;
constexpr double kDefaultDynamicRange_dB = 38.0;

/// What all events that gain may add to the light, so that its power stays a number.
constexpr double kMostGain_dB = 100.0;

/// The end of a fibre as the sum of its sections, and as somebody else added them.
constexpr double kSamePlace_m = 1e-6;

struct Range
{
    double lowest;
    double highest;
};

constexpr Range kLength_m {1e-3, 1e6};
constexpr Range kAttenuation_dBPerKm {0.0, 1000.0};
constexpr Range kBackscatter_dB {-120.0, -30.0};
constexpr Range kIor {1.3, 1.7};
constexpr Range kLoss_dB {-10.0, 100.0};
constexpr Range kReflectance_dB {-120.0, 0.0};
constexpr Range kDynamicRange_dB {1.0, 80.0};
constexpr Range kWavelength_nm {600.0, 2000.0};

/// What ordinary fibre has.
Spectrum usual(double OTDR::UsualFibre::*quantity)
{
    std::map<int, double> values;
    for (const OTDR::UsualFibre& fibre : OTDR::kUsualFibre) {
        values[fibre.wavelength_nm] = fibre.*quantity;
    }
    return Spectrum(std::move(values));
}

/// Takes a JSON object apart and keeps the first thing that is wrong, with its place.
class FibreParser
{
public:
    Fibre fibreOf(const QJsonObject& object)
    {
        Fibre fibre;
        fibre.name = text(object, "name");
        fibre.ior = spectrum(object["ior"], "ior", kIor, usual(&OTDR::UsualFibre::groupIndex));
        const QJsonArray sections = list(object, "sections", kMostSections);
        for (int i = 0; i < sections.size() && !failed(); ++i) {
            fibre.sections.push_back(sectionOf(sections[i], QString("sections[%1]").arg(i)));
        }
        if (fibre.sections.empty()) {
            fail("sections", "a fibre has at least one");
        }
        const double length_m = fibre.length_m();
        if (length_m > kLength_m.highest) {
            fail("sections", "longer than 1000 km in all");
        }
        const QJsonArray events = list(object, "events", kMostEvents);
        for (int i = 0; i < events.size() && !failed(); ++i) {
            fibre.events.push_back(eventOf(events[i], QString("events[%1]").arg(i), length_m));
        }
        checkGains(fibre.events);
        std::stable_sort(fibre.events.begin(), fibre.events.end(),
                         [](const FibreEvent& a, const FibreEvent& b) { return a.at_m < b.at_m; });
        fibre.endReflectance_dB =
            spectrum(object["end_reflectance_db"], "end_reflectance_db", kReflectance_dB, {});
        fibre.dynamicRange_dB = spectrum(object["dynamic_range_db"], "dynamic_range_db",
                                         kDynamicRange_dB, Spectrum(kDefaultDynamicRange_dB));
        return fibre;
    }

    [[nodiscard]] bool failed() const { return !error.isEmpty(); }

    [[nodiscard]] const QString& firstError() const { return error; }

private:
    void checkGains(const std::vector<FibreEvent>& events)
    {
        double gain_dB = 0.0;
        for (const FibreEvent& event : events) {
            gain_dB += std::max(0.0, -event.loss_dB.lowest());
        }
        if (gain_dB > kMostGain_dB) {
            fail("events", QString("they gain more than %1 dB in all").arg(kMostGain_dB));
        }
    }

    Section sectionOf(const QJsonValue& value, const QString& place)
    {
        const QJsonObject object = objectOf(value, place);
        Section section;
        section.length_m = number(object["length_m"], place + ".length_m", kLength_m);
        const QString attenuation = place + ".attenuation_db_per_km";
        section.attenuation_dBPerKm =
            spectrum(object["attenuation_db_per_km"], attenuation, kAttenuation_dBPerKm, {});
        if (section.attenuation_dBPerKm.empty()) {
            fail(attenuation, "missing");
        }
        section.backscatter_dB =
            spectrum(object["backscatter_db"], place + ".backscatter_db", kBackscatter_dB,
                     usual(&OTDR::UsualFibre::backscatter_dB));
        return section;
    }

    FibreEvent eventOf(const QJsonValue& value, const QString& place, double length_m)
    {
        const QJsonObject object = objectOf(value, place);
        FibreEvent event;
        const double furthest_m = length_m + kSamePlace_m;
        event.at_m = number(object["at_m"], place + ".at_m", {0.0, furthest_m});
        event.loss_dB = spectrum(object["loss_db"], place + ".loss_db", kLoss_dB, Spectrum(0.0));
        event.reflectance_dB =
            spectrum(object["reflectance_db"], place + ".reflectance_db", kReflectance_dB, {});
        event.kind = text(object, "kind", place + ".");
        return event;
    }

    QJsonObject objectOf(const QJsonValue& value, const QString& place)
    {
        if (!value.isObject()) {
            fail(place, "not an object");
        }
        return value.toObject();
    }

    QJsonArray list(const QJsonObject& object, const QString& key, int most)
    {
        const QJsonValue value = object[key];
        if (!value.isArray() && !isMissing(value)) {
            fail(key, "not a list");
        }
        if (value.toArray().size() > most) {
            fail(key, QString("more than %1").arg(most));
        }
        return value.toArray();
    }

    std::string text(const QJsonObject& object, const QString& key, const QString& place = {})
    {
        const QJsonValue value = object[key];
        if (!value.isString() && !isMissing(value)) {
            fail(place + key, "not a text");
        }
        if (value.toString().size() > kLongestText) {
            fail(place + key, QString("longer than %1 characters").arg(kLongestText));
        }
        return value.toString().toStdString();
    }

    double number(const QJsonValue& value, const QString& place, const Range& range)
    {
        const double read = value.toDouble(std::numeric_limits<double>::quiet_NaN());
        if (isMissing(value)) {
            fail(place, "missing");
        } else if (!value.isDouble()) {
            fail(place, "not a number");
        } else if (!(read >= range.lowest && read <= range.highest)) {
            fail(place,
                 QString("%1 does not lie between %2 and %3")
                     .arg(read)
                     .arg(range.lowest)
                     .arg(range.highest));
        }
        return read;
    }

    Spectrum spectrum(const QJsonValue& value, const QString& place, const Range& range,
                      const Spectrum& otherwise)
    {
        if (isMissing(value)) {
            return otherwise;
        }
        if (!value.isObject()) {
            return Spectrum(number(value, place, range));
        }
        const QJsonObject object = value.toObject();
        std::map<int, double> values;
        for (auto entry = object.begin(); entry != object.end() && !failed(); ++entry) {
            bool isWhole = false;
            const int wavelength = entry.key().toInt(&isWhole);
            if (!isWhole || wavelength < kWavelength_nm.lowest
                || wavelength > kWavelength_nm.highest) {
                fail(place, QString("\"%1\" is not a wavelength in nm").arg(entry.key().left(40)));
            }
            values[wavelength] = number(entry.value(), place + "." + entry.key(), range);
        }
        if (values.empty()) {
            fail(place, "no value at any wavelength");
        }
        return Spectrum(std::move(values));
    }

    static bool isMissing(const QJsonValue& value) { return value.isUndefined() || value.isNull(); }

    void fail(const QString& place, const QString& what)
    {
        if (error.isEmpty()) {
            error = place + ": " + what;
        }
    }

    QString error;
};

otdr::Error error(otdr::ErrorCode code, const QString& message)
{
    return {code, message.toStdString(), 0};
}

otdr::Error tooLarge(const QString& source)
{
    return error(otdr::ErrorCode::TooLarge, source + ": larger than any fibre file");
}

otdr::Result<Fibre> readFibre(const QString& name)
{
    QFile file(name);
    if (!QFileInfo(name).isFile()) {
        return error(otdr::ErrorCode::CannotOpen, name + ": no such fibre file");
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return error(otdr::ErrorCode::CannotOpen, name + ": " + file.errorString());
    }
    if (file.size() > kLargestFibreFile) {
        return tooLarge(name);
    }
    const QByteArray json = file.read(kLargestFibreFile);
    if (file.error() != QFile::NoError) {
        return error(otdr::ErrorCode::CannotRead, name + ": " + file.errorString());
    }
    return parseFibre(json, name);
}

} // namespace

otdr::Result<Fibre> parseFibre(const QByteArray& json, const QString& source)
{
    if (json.size() > kLargestFibreFile) {
        return tooLarge(source);
    }
    QJsonParseError parsing;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parsing);
    if (parsing.error != QJsonParseError::NoError) {
        const QString message = QString("%1: at byte %2: %3")
                                    .arg(source)
                                    .arg(parsing.offset)
                                    .arg(parsing.errorString());
        return otdr::Error {otdr::ErrorCode::Damaged, message.toStdString(),
                            static_cast<std::size_t>(std::max(0, parsing.offset))};
    }
    if (!document.isObject()) {
        return error(otdr::ErrorCode::Damaged, source + ": not an object");
    }
    FibreParser parser;
    Fibre fibre = parser.fibreOf(document.object());
    if (parser.failed()) {
        return error(otdr::ErrorCode::Damaged, source + ": " + parser.firstError());
    }
    return fibre;
}

otdr::Result<Fibre> readFibreFile(const std::string& path)
{
    return readFibre(QFile::decodeName(path.c_str()));
}

otdr::Result<Fibre> demoFibre()
{
    loadResources();
    return readFibre(":/fibres/demo-link.json");
}

} // namespace gather
