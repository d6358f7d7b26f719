#include "platform/launcher/settingrules.h"

#include <QHash>

#include <cmath>
#include <limits>
#include <optional>

namespace settingrules {

namespace {

struct Range
{
    double lowest;
    double highest;
    bool whole = false;
};

constexpr double kNoLimit = std::numeric_limits<double>::max();

const QHash<QString, QVariantList>& tables()
{
    static const QHash<QString, QVariantList> all {
        {"MeasParams/duration", {15, 30, 45, 60, 90, 120, 180, 300, 600, 1800, 0}},
        {"MeasParams/pulse", {5, 10, 30, 100, 275, 1000, 5000, 10000, 20000}},
        {"MeasParams/distance", {1000, 2500, 5000, 10000, 20000, 40000, 80000, 160000}},
        {"MeasParams/wavelength", {1310, 1550, "all"}},
        {"AdvancedParams/MeasMode", {0, 1}},
        {"Display/night", {false, true}},
    };
    return all;
}

const QHash<QString, Range>& ranges()
{
    // Group indices of silica fibre lie near 1.47. A helix factor beyond a quarter is no cable in
    // use.
    static const QHash<QString, Range> all {
        {"MeasParams/ior1310", {1.3, 1.7}},
        {"MeasParams/ior1550", {1.3, 1.7}},
        {"MeasParams/helix", {0.0, 25.0}},
        {"AdvancedParams/reflIndex", {1.0, 999999999.0, true}},
        {"Simulation/timeScale", {0.0, kNoLimit}},
        {"Simulation/seed", {0.0, std::numeric_limits<quint32>::max(), true}},
    };
    return all;
}

std::optional<double> number(const QVariant& value)
{
    bool ok = false;
    const double read = value.toString().toDouble(&ok);
    return ok && std::isfinite(read) ? std::optional(read) : std::nullopt;
}

bool isNumberType(const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return true;
    default:
        return false;
    }
}

bool isInRange(const Range& range, const QVariant& value)
{
    const std::optional<double> read = number(value);
    return read && *read >= range.lowest && *read <= range.highest
        && (!range.whole || *read == std::floor(*read));
}

/// The entry of the setting's table that equals the value; invalid where there is none.
QVariant entry(const QString& path, const QVariant& value)
{
    const QVariantList table = tables().value(path);
    for (const QVariant& one : table) {
        if (equal(one, value)) {
            return one;
        }
    }
    return {};
}

} // namespace

bool isAllowed(const QString& path, const QVariant& value)
{
    if (!value.isValid()) {
        return false;
    }
    if (tables().contains(path)) {
        return entry(path, value).isValid();
    }
    const auto range = ranges().constFind(path);
    return range == ranges().constEnd() || isInRange(*range, value);
}

QVariant canonical(const QString& path, const QVariant& value)
{
    if (tables().contains(path)) {
        const QVariant found = entry(path, value);
        return found.isValid() ? found : value;
    }
    if (ranges().contains(path)) {
        const std::optional<double> read = number(value);
        return read ? QVariant(*read) : value;
    }
    return value;
}

bool equal(const QVariant& a, const QVariant& b)
{
    if (!a.isValid() || !b.isValid()) {
        return a.isValid() == b.isValid();
    }
    if (isNumberType(a) || isNumberType(b)) {
        const std::optional<double> left = number(a);
        const std::optional<double> right = number(b);
        return left && right && *left == *right;
    }
    return a.toString() == b.toString();
}

QVariantMap defaults(const QString& module)
{
    if (module == QLatin1String("zuotdr")) {
        return {
            {"MeasParams/duration", 15},
            {"MeasParams/pulse", 100},
            {"MeasParams/distance", 10000},
            {"MeasParams/wavelength", 1310},
            {"MeasParams/helix", 0},
            {"MeasParams/ior1310", 1.4677},
            {"MeasParams/ior1550", 1.4683},
            {"AdvancedParams/MeasMode", 0},
            {"AdvancedParams/reflNameScheme", "trace_wavelength_index"},
            {"AdvancedParams/reflIndex", 1},
        };
    }
    if (module == QLatin1String("zu-launcher")) {
        return {
            {"paths/otdr", "otdr"},
            {"flash/save", false},
            {"flash/dir", "/media/usb"},
            {"Display/night", false},
        };
    }
    return {};
}

} // namespace settingrules
