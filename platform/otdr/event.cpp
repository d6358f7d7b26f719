#include "platform/otdr/event.h"

#include "platform/otdr/eventnumbers.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <tuple>

namespace {

bool same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

int rank(Event::Type type)
{
    return type == Event::SpanStart ? 0 : type == Event::SpanEnd ? 2 : 1;
}

} // namespace

Event::Event(Type type, long coordinate_m, long width_m)
    : type(type)
    , coordinate(static_cast<double>(coordinate_m))
    , width(static_cast<double>(width_m))
{
}

double Event::attenuation() const
{
    return length > 0.0 ? loss * 1000.0 / length : kUnknown;
}

bool Event::isKnown(double value)
{
    return !std::isnan(value);
}

QString Event::toString() const
{
    QStringList words {QString(QLatin1Char(type)), "position", QString::number(position)};
    for (const auto& [key, number] : kEventNumbers) {
        const double value = this->*number;
        if (isKnown(value)) {
            words << key << QString::number(value, 'g', 17); // enough digits to come back the same
        }
    }
    if (saturated) {
        words << "saturated"
              << "1";
    }
    return words.join(' ');
}

bool operator==(const Event& a, const Event& b)
{
    return a.type == b.type && a.position == b.position && a.saturated == b.saturated
        && std::all_of(std::begin(kEventNumbers), std::end(kEventNumbers),
                       [&](const auto& one) { return same(a.*one.second, b.*one.second); });
}

bool operator<(const Event& a, const Event& b)
{
    return std::make_tuple(a.coordinate, rank(a.type), a.position)
        < std::make_tuple(b.coordinate, rank(b.type), b.position);
}
