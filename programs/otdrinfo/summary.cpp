#include "programs/otdrinfo/summary.h"

#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorvalues.h"
#include "programs/otdrinfo/text.h"

#include <QDateTime>

#include <cmath>

namespace otdrinfo {

namespace {

namespace sor = otdr::sor;

QString number(double value, int decimals, const char* unit = "")
{
    return std::isfinite(value) ? QString::number(value, 'f', decimals) + unit : QString("-");
}

QString textOrDash(const QString& text)
{
    return text.isEmpty() ? QString("-") : text;
}

QString line(const char* name, const QString& value)
{
    return QString("  %1 %2\n").arg(QLatin1String(name), -18).arg(value);
}

QString checksumText(sor::Checksum checksum)
{
    switch (checksum) {
    case sor::Checksum::Matches:
        return "matches";
    case sor::Checksum::NotComputed:
        return "not computed";
    case sor::Checksum::Unknown:
        return "fits no recipe that is known";
    case sor::Checksum::NotChecked:
        return "not checked";
    case sor::Checksum::Missing:
        break;
    }
    return "missing";
}

QString wavelengthText(const sor::File& file)
{
    const int nominal_nm = sor::nominalWavelength_nm(file);
    const QString actual = number(sor::actualWavelength_nm(file), 1, " nm");
    return nominal_nm == 0 ? actual : QString("%1 nm (source %2)").arg(nominal_nm).arg(actual);
}

QString dateText(const sor::File& file)
{
    return file.fxd.dateTime_s == 0 ? QString("-")
                                    : QDateTime::fromSecsSinceEpoch(file.fxd.dateTime_s, Qt::UTC)
                                          .toString("yyyy-MM-dd hh:mm:ss 'UTC'");
}

QString whoAndWhere(const sor::File& file)
{
    return line("supplier", textOrDash(forTerminal(file.sup.supplier)))
        + line("mainframe", textOrDash(forTerminal(file.sup.mainframeId)))
        + line("module", textOrDash(forTerminal(file.sup.moduleId)))
        + line("cable, fibre",
               textOrDash(forTerminal(file.gen.cableId)) + ", "
                   + textOrDash(forTerminal(file.gen.fibreId)))
        + line("from, to",
               textOrDash(forTerminal(file.gen.locationA)) + ", "
                   + textOrDash(forTerminal(file.gen.locationB)))
        + line("date", dateText(file));
}

QString howMeasured(const sor::File& file)
{
    const double averages = file.fxd.averages;
    return line("wavelength", wavelengthText(file))
        + line("pulse", number(sor::pulse_ns(file), 0, " ns"))
        + line("index", file.hasFxd ? number(sor::groupIndex(file), 5) : QString("-"))
        + line("samples", QString::number(file.data.samples.size()))
        + line("spacing", number(sor::spacing_m(file), 4, " m"))
        + line("range", number(sor::range_m(file), 1, " m"))
        + line("averages", averages > 0.0 ? number(averages, 0) : QString("-"))
        + line("averaging time", number(sor::averagingTime_s(file), 1, " s"))
        + line("backscatter", number(sor::backscatter_dB(file), 1, " dB"));
}

QString results(const sor::File& file)
{
    return line("total loss", number(sor::totalLoss_dB(file), 3, " dB"))
        + line("return loss", number(sor::returnLoss_dB(file), 3, " dB"))
        + line("fibre end", file.hasFxd ? number(sor::fibreEnd_m(file), 1, " m") : "-")
        + line("checksum", checksumText(file.checksum));
}

/// With a star where it is only a bound.
QString reflectanceText(const sor::KeyEvent& event)
{
    return number(sor::reflectance_dB(event), 3, sor::isSaturated(event) ? "*" : "");
}

QString eventTable(const sor::File& file)
{
    const std::string kinds = sor::eventKinds(file);
    if (kinds.empty()) {
        return "  no events\n";
    }
    QString table = "   no kind code     distance m   loss dB  refl. dB  before dB/km\n";
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const sor::KeyEvent& event = file.keyEvents->events[i];
        table += QString("%1 %2    %3 %4 %5 %6 %7  %8")
                     .arg(event.number, 5)
                     .arg(QChar::fromLatin1(kinds[i]))
                     .arg(forTerminal(sor::codeText(event)), -6)
                     .arg(file.hasFxd ? number(sor::position_m(file, event), 2) : QString("-"), 12)
                     .arg(number(sor::loss_dB(event), 3), 9)
                     .arg(reflectanceText(event), 9)
                     .arg(number(sor::attenuation_dBPerKm(event), 3), 13)
                     .arg(forTerminal(event.comment));
        while (table.endsWith(' ')) {
            table.chop(1);
        }
        table += '\n';
    }
    return table;
}

QString notesOf(const sor::File& file)
{
    QString notes;
    for (const std::string& note : file.notes) {
        notes += "  note: " + forTerminal(note) + '\n';
    }
    const std::string axisNote = sor::axisOf(file).note;
    return axisNote.empty() ? notes : notes + "  note: " + forTerminal(axisNote) + '\n';
}

} // namespace

QString summaryOf(const std::string& path, const sor::File& file)
{
    return QString::fromUtf8(path.c_str()) + QString(": trace file, version %1\n").arg(file.version)
        + whoAndWhere(file) + howMeasured(file) + results(file) + eventTable(file) + notesOf(file);
}

} // namespace otdrinfo
