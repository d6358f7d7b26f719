#include "platform/otdr/event.h"

#include <QStringList>

#include <cmath>
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
    const std::pair<const char*, double> values[] = {
        {"coordinate", coordinate},
        {"width", width},
        {"loss", loss},
        {"reflIn", reflIn},
        {"reflOut", reflOut},
        {"reflectance", reflectance},
        {"orl", orl},
        {"length", length},
        {"attenuationBefore", attenuationBefore},
        {"beforeFrom", beforeFrom},
        {"behindFrom", behindFrom},
        {"behindTo", behindTo},
    };
    for (const auto& [key, value] : values) {
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
        && same(a.coordinate, b.coordinate) && same(a.width, b.width) && same(a.loss, b.loss)
        && same(a.reflIn, b.reflIn) && same(a.reflOut, b.reflOut)
        && same(a.reflectance, b.reflectance) && same(a.orl, b.orl) && same(a.length, b.length)
        && same(a.attenuationBefore, b.attenuationBefore) && same(a.beforeFrom, b.beforeFrom)
        && same(a.behindFrom, b.behindFrom) && same(a.behindTo, b.behindTo);
}

bool operator<(const Event& a, const Event& b)
{
    return std::make_tuple(a.coordinate, rank(a.type), a.position)
        < std::make_tuple(b.coordinate, rank(b.type), b.position);
}
