#include "window/countdown.h"

#include <QChar>
#include <QCoreApplication>

namespace Waveform {

namespace {

QString twoDigits(int value, char fill)
{
    return QString("%1").arg(value, 2, 10, QLatin1Char(fill));
}

} // namespace

QString countdownCaption(int wavelength_nm, int remaining_s)
{
    const QString time = remaining_s < 60
        ? twoDigits(remaining_s, '0')
        : twoDigits((remaining_s / 60) % 60, ' ') + ":" + twoDigits(remaining_s % 60, '0');
    return QString::number(wavelength_nm) + " " + QCoreApplication::translate("Units", "nm") + "\n"
        + time;
}

QString realtimeCaption(int wavelength_nm)
{
    return QString::number(wavelength_nm) + "\n" + QChar(0x221E);
}

} // namespace Waveform
