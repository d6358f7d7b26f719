#include "programs/wfgather/settings.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <cmath>

namespace gather {

namespace {

constexpr qint64 kLargestFile = 1 << 20;
constexpr int kBorderOfIndices_nm = 1430; ///< the middle between 1310 and 1550 nm

struct Range
{
    double lowest;
    double highest;
};

constexpr Range kDuration_s {0, 36000}; // ten hours
constexpr Range kPulse_ns {1, 65535}; // what the announcement can hold
constexpr Range kDistance_m {10, 500000};
constexpr Range kWavelength_nm {600, 2000};
constexpr Range kIor {1.3, 1.7};
constexpr Range kHelix_percent {-25, 25};
constexpr Range kBackscatter_dB {-120, -30};
constexpr Range kTimeScale {0, 1000};
constexpr Range kSeed {0, 4294967295.0};

QString shown(double number)
{
    return QString::number(number, 'g', 12);
}

/// Reads keys as they are asked for and keeps the first thing that is wrong.
class KeyReader
{
public:
    explicit KeyReader(const QString& path)
        : file(path, QSettings::IniFormat)
        , path(path)
    {
        file.setIniCodec("UTF-8"); // of a file written by hand; QSettings itself escapes
    }

    [[nodiscard]] QSettings::Status status() const { return file.status(); }

    [[nodiscard]] bool has(const QString& key) const { return file.contains(key); }

    [[nodiscard]] const QString& firstError() const { return error; }

    /// The text of a key; one with commas that nobody quoted comes as a list and is joined again.
    [[nodiscard]] QString text(const QString& key) const
    {
        const QVariant value = file.value(key);
        return value.type() == QVariant::StringList ? value.toStringList().join(",")
                                                    : value.toString();
    }

    void read(const QString& key, const Range& range, double& value)
    {
        if (!has(key)) {
            return;
        }
        bool isNumber = false;
        const double number = text(key).toDouble(&isNumber);
        if (isNumber && number >= range.lowest && number <= range.highest) {
            value = number;
        } else {
            fail(key,
                 QString("a number from %1 to %2").arg(shown(range.lowest), shown(range.highest)));
        }
    }

    /// A fraction is cut off.
    void read(const QString& key, const Range& range, int& value)
    {
        double number = value;
        read(key, range, number);
        value = static_cast<int>(number);
    }

    void readPath(const QString& key, std::string& value) const
    {
        value = QFile::encodeName(text(key)).toStdString();
    }

    void fail(const QString& key, const QString& wanted)
    {
        if (error.isEmpty()) {
            error = QString("%1: %2 is \"%3\", not %4").arg(path, key, text(key).left(40), wanted);
        }
    }

private:
    QSettings file;
    QString path;
    QString error;
};

void readWavelengths(KeyReader& keys, std::vector<int>& wavelengths)
{
    const QString key = "MeasParams/wavelength";
    if (keys.text(key) == "all") {
        wavelengths = {1310, 1550};
        return;
    }
    double wavelength = wavelengths.front();
    keys.read(key, kWavelength_nm, wavelength);
    wavelengths = {static_cast<int>(std::lround(wavelength))};
}

void readSimulation(KeyReader& keys, Settings& settings)
{
    keys.readPath("Simulation/fibre", settings.fibre);
    keys.readPath("Simulation/replay", settings.replay);
    keys.read("Simulation/timeScale", kTimeScale, settings.timeScale);
    const QString key = "Simulation/seed";
    if (keys.has(key)) {
        double seed = 0.0;
        keys.read(key, kSeed, seed);
        if (seed != std::floor(seed)) {
            keys.fail(key, "a whole number");
        }
        settings.seed = static_cast<std::uint64_t>(seed);
    }
}

Settings settingsFrom(KeyReader& keys)
{
    Settings settings;
    keys.read("MeasParams/duration", kDuration_s, settings.duration_s);
    keys.read("MeasParams/pulse", kPulse_ns, settings.pulse_ns);
    keys.read("MeasParams/distance", kDistance_m, settings.distance_m);
    readWavelengths(keys, settings.wavelengths_nm);
    keys.read("MeasParams/ior1310", kIor, settings.ior1310);
    keys.read("MeasParams/ior1550", kIor, settings.ior1550);
    keys.read("MeasParams/helix", kHelix_percent, settings.helix_percent);
    if (keys.has("MeasParams/rbs")) {
        double backscatter = kBackscatter_dB.lowest;
        keys.read("MeasParams/rbs", kBackscatter_dB, backscatter);
        settings.backscatter_dB = backscatter;
    }
    readSimulation(keys, settings);
    if (settings.isRealtime() && settings.wavelengths_nm.size() > 1) {
        keys.fail("MeasParams/wavelength", "one wavelength, as realtime (duration 0) needs");
    }
    return settings;
}

otdr::Error error(otdr::ErrorCode code, const QString& message)
{
    return {code, message.toStdString(), 0};
}

} // namespace

TraceParams Settings::paramsAt(int wavelength_nm) const
{
    TraceParams params;
    params.wavelength_nm = wavelength_nm;
    params.duration_s = duration_s;
    params.ior = wavelength_nm < kBorderOfIndices_nm ? ior1310 : ior1550;
    params.helix_percent = helix_percent;
    params.distance_m = distance_m;
    params.pulse_ns = pulse_ns;
    params.backscatter_dB = backscatter_dB.value_or(params.backscatter_dB);
    return params;
}

otdr::Result<Settings> readSettings(const std::string& path)
{
    const QString name = QFile::decodeName(path.c_str());
    const QFileInfo info(name);
    if (!info.isFile()) {
        return error(otdr::ErrorCode::CannotOpen, name + ": no such settings file");
    }
    if (info.size() > kLargestFile) {
        return error(otdr::ErrorCode::TooLarge, name + ": too large for a settings file");
    }
    // QSettings takes what it cannot open for empty.
    if (QFile file(name); !file.open(QIODevice::ReadOnly)) {
        return error(otdr::ErrorCode::CannotOpen, name + ": " + file.errorString());
    }
    KeyReader keys(name);
    if (keys.status() != QSettings::NoError) {
        return error(otdr::ErrorCode::Damaged, name + ": not a settings file");
    }
    Settings settings = settingsFrom(keys);
    if (!keys.firstError().isEmpty()) {
        return error(otdr::ErrorCode::Damaged, keys.firstError());
    }
    return settings;
}

} // namespace gather
