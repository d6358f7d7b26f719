#pragma once

#include "platform/otdr/tracestate.h"
#include "programs/otdrreport/tracechart.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <limits>

namespace otdrreport {

/// A value that the file does not give.
constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

/// The fibre between two events, or between 0 m and the first one.
struct ReportedSection
{
    double start_m = kUnknown;
    double length_m = kUnknown; ///< NaN: there is no section
    double attenuation_dBPerKm = kUnknown;
    double loss_dB = kUnknown; ///< attenuation times length

    [[nodiscard]] bool exists() const { return length_m > 0.0; }
};

struct ReportedEvent
{
    int number = 0;
    char kind = 'n'; ///< as Event::Type has it
    bool endsFibre = false; ///< by its code; a trace may end without its fibre
    bool saturated = false; ///< the reflectance is only a bound
    double distance_m = kUnknown;
    double loss_dB = kUnknown;
    double reflectance_dB = kUnknown;
    ReportedSection before;
    QString comment;
};

/// What a report says of one trace: the figures of its file, NaN or 0 where it gives none, and its
/// texts in printable characters.
struct Report
{
    QString fileName; ///< without its directory
    qint64 date_s = 0; ///< since 1970-01-01 UTC; 0 where it is not known

    QString cable;
    QString fibre;
    QString from;
    QString to;
    QString operatorName;
    QString comment;

    QString supplier;
    QString mainframe;
    QString mainframeSerial;
    QString module;
    QString moduleSerial;
    QString software;

    int wavelength_nm = 0; ///< nominal
    double source_nm = kUnknown; ///< measured
    double pulse_ns = kUnknown;
    double ior = kUnknown;
    double backscatter_dB = kUnknown;
    double range_m = kUnknown;
    double spacing_m = kUnknown;
    std::size_t samples = 0;
    double averages = 0.0;
    double averagingTime_s = kUnknown;

    double spanLength_m = kUnknown;
    double spanLoss_dB = kUnknown;
    double spanReturnLoss_dB = kUnknown;
    double spanAttenuation_dBPerKm = kUnknown; ///< loss over length

    QVector<ReportedEvent> events; ///< in order along the fibre
    QStringList notes; ///< what was odd about the file and what was assumed
    TraceChart chart;
};

/// The report of a trace that was loaded from a trace file (state.file is set).
[[nodiscard]] Report reportOf(const TraceState& state);

} // namespace otdrreport
