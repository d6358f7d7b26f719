#include "app/eventstext.h"

#include "platform/otdr/otdr.h"
#include "platform/otdr/reflectogram.h"

#include <QFileInfo>

namespace {

QString kindOf(Event::Type type)
{
    switch (type) {
    case Event::SpanStart:
        return "start";
    case Event::Reflective:
        return "reflective";
    case Event::NonReflective:
        return "non-reflective";
    case Event::Positive:
        return "gain";
    case Event::SpanEnd:
        return "end";
    case Event::Fiber:
        break;
    }
    return "fibre";
}

QString known(double value, int decimals)
{
    return Event::isKnown(value) ? QString::number(value, 'f', decimals) : QString("-");
}

QString row(const QString& number, const QString& kind, const QString& location,
            const QString& loss, const QString& reflection, const QString& before)
{
    return QString("%1  %2  %3  %4  %5  %6\n")
        .arg(number, 3)
        .arg(kind, -14)
        .arg(location, 10)
        .arg(loss, 8)
        .arg(reflection, 13)
        .arg(before, 12);
}

/// A loss at the ends of the fibre says nothing, nor does a reflection of what does not reflect. A
/// file tells a loss that was not measured as 0.
QString lossOf(const Event& event)
{
    const bool isEnd = event.type == Event::SpanStart || event.type == Event::SpanEnd;
    return isEnd || event.loss == 0.0 ? QString("-") : known(event.loss, 2);
}

QString reflectionOf(const Event& event)
{
    const bool reflects = event.type != Event::NonReflective && event.type != Event::Positive
        && event.reflectance != 0.0;
    return reflects ? known(event.reflectance, 2) : QString("-");
}

QString figuresOf(const Reflectogram& refl)
{
    const auto sor = refl.sorData();
    if (!sor || !sor->keyEvents()) {
        return {};
    }
    return QString(", total loss %1 dB, ORL %2 dB")
        .arg(known(sor->keyEvents()->totalLoss, 2), known(sor->keyEvents()->orl, 2));
}

} // namespace

QString eventsText(const Reflectogram& refl)
{
    QString text = QFileInfo(refl.fileName()).fileName() + ": " + refl.paramsToString()
        + figuresOf(refl) + "\n"
        + row("N", "Type", "Location m", "Loss dB", "Reflection dB", "Before dB/km");
    int number = 0;
    for (const Event& event : refl.getEventList()) {
        if (event.type == Event::Fiber) {
            continue;
        }
        const double location_m =
            OTDR::smpl2meters(event.position, refl.dataSpacing(), refl.IOR(), refl.helix());
        text += row(QString::number(++number), kindOf(event.type), known(location_m, 2),
                    lossOf(event), reflectionOf(event), known(event.attenuationBefore, 3));
    }
    return number > 0 ? text : text + "  no events\n";
}
