#include "window/settingchoices.h"

#include "platform/otdr/screennumber.h"

#include <QCoreApplication>

namespace Waveform {

namespace {

constexpr auto kSecond = QT_TRANSLATE_NOOP("Units", "s");
constexpr auto kMinute = QT_TRANSLATE_NOOP("Units", "min");
constexpr auto kNanosecond = QT_TRANSLATE_NOOP("Units", "ns");
constexpr auto kMicrosecond = QT_TRANSLATE_NOOP("Units", "\u00b5s");
constexpr auto kKilometre = QT_TRANSLATE_NOOP("Units", "km");
constexpr auto kNanometre = QT_TRANSLATE_NOOP("Units", "nm");

struct Row
{
    const char* number;
    const char* unit;
    int value;
};

template <int count>
SettingChoices choices(const QString& title, const char* key, const Row (&rows)[count])
{
    SettingChoices made {title, key, {}, {}};
    for (const Row& row : rows) {
        made.labels << t(screennumber::fromCode(row.number), row.unit);
        made.values << row.value;
    }
    return made;
}

} // namespace

QString t(const QString& value, const QString& unit)
{
    return value + " " + QCoreApplication::translate("Units", unit.toUtf8().constData());
}

SettingChoices timeChoices()
{
    constexpr Row kRows[] = {
        {"15", kSecond, 15},  {"30", kSecond, 30},   {"45", kSecond, 45}, {"60", kSecond, 60},
        {"90", kSecond, 90},  {"2", kMinute, 120},   {"3", kMinute, 180}, {"5", kMinute, 300},
        {"10", kMinute, 600}, {"30", kMinute, 1800},
    };
    SettingChoices made =
        choices(QCoreApplication::translate("Waveform::Window", "Time"), "duration", kRows);
    made.labels << QString(QChar(0x221E)); // realtime has no end
    made.values << 0;
    return made;
}

SettingChoices pulseChoices(bool withLongest)
{
    constexpr Row kRows[] = {
        {"5", kNanosecond, 5},     {"10", kNanosecond, 10},     {"30", kNanosecond, 30},
        {"100", kNanosecond, 100}, {"275", kNanosecond, 275},   {"1", kMicrosecond, 1000},
        {"5", kMicrosecond, 5000}, {"10", kMicrosecond, 10000},
    };
    SettingChoices made =
        choices(QCoreApplication::translate("Waveform::Window", "Pulse"), "pulse", kRows);
    if (withLongest) {
        made.labels << longestPulseLabel();
        made.values << kLongestPulse_ns;
    }
    return made;
}

SettingChoices distanceChoices()
{
    constexpr Row kRows[] = {
        {"1", kKilometre, 1000},   {"2.5", kKilometre, 2500},   {"5", kKilometre, 5000},
        {"10", kKilometre, 10000}, {"20", kKilometre, 20000},   {"40", kKilometre, 40000},
        {"80", kKilometre, 80000}, {"160", kKilometre, 160000},
    };
    return choices(QCoreApplication::translate("Waveform::Window", "Distance"), "distance", kRows);
}

SettingChoices wavelengthChoices()
{
    constexpr Row kRows[] = {{"1310", kNanometre, 1310}, {"1550", kNanometre, 1550}};
    SettingChoices made =
        choices(QCoreApplication::translate("Waveform::Window", "Wavelength"), "wavelength", kRows);
    made.labels << QCoreApplication::translate("Waveform::Window", "All");
    made.values << "all";
    return made;
}

QString longestPulseLabel()
{
    return t("20", kMicrosecond);
}

QString foreignLabel(const QString& key, const QVariant& value)
{
    constexpr double kFromSmall = 1000.0; // ns to µs, m to km
    QString text = value.toString();
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (!isNumber) {
        return text;
    }
    if (key == "distance") {
        return t(screennumber::general(number / kFromSmall), kKilometre);
    }
    if (key == "pulse" && number >= kFromSmall) {
        return t(screennumber::general(number / kFromSmall), kMicrosecond);
    }
    const char* unit = key == "pulse" ? kNanosecond : key == "duration" ? kSecond : kNanometre;
    return t(screennumber::general(number), unit);
}

bool startsWithLongestPulse(const QString& cardRevision)
{
    return !(cardRevision < QLatin1String("3.0"));
}

bool hasLongestPulse(double cardRevision)
{
    constexpr float kLimit = 1e6F; // whatever a card says, it can be rounded
    constexpr int kLastWithout = 2;
    return qRound(qBound(-kLimit, static_cast<float>(cardRevision), kLimit)) > kLastWithout;
}

} // namespace Waveform
