#include "platform/otdr/core/sorvalues.h"

#include "platform/otdr/core/constants.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>

namespace otdr::sor {

namespace {

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
/// What glass can have.
constexpr double kLeastGroupIndex = 1.3;
constexpr double kMostGroupIndex = 1.7;

constexpr double kLongestWavelength_nm = 5000.0;

/// Backscatter coefficients of glass fibres at 1 ns, and by how much they are larger at 1 us.
constexpr double kWeakestBackscatter_dB = -90.0;
constexpr double kStrongestBackscatter_dB = -60.0;
constexpr double kAtMicrosecond_dB = 30.0;

constexpr double kCountsPerNs = 5.0; // of pulse width; a pulse covers half its duration, one way

bool contains(const std::string& text, std::string_view part)
{
    return std::search(text.begin(), text.end(), part.begin(), part.end(),
                       [](char a, char b) {
                           return std::tolower(static_cast<unsigned char>(a))
                               == std::tolower(static_cast<unsigned char>(b));
                       })
        != text.end();
}

bool hasBlock(const File& file, std::string_view prefix)
{
    return std::any_of(file.blocks.begin(), file.blocks.end(), [prefix](const RawBlock& block) {
        return std::string_view(block.name).substr(0, prefix.size()) == prefix;
    });
}

/// Whole seconds where the instrument or the software of these makers wrote the file. Software that
/// saved the file of another maker again has left the field as that one fills it.
bool writesWholeSeconds(const File& file)
{
    const std::string& supplier = file.sup.supplier;
    const bool writesTenths = contains(supplier, "noyes") || contains(supplier, "fibercloud");
    return !writesTenths
        && (hasBlock(file, "ExfoNewProprietaryBlock") || contains(supplier, "anritsu"));
}

double knownOrNaN(double value)
{
    return value != 0.0 ? value : kUnknown;
}

/// Whether a figure is one of the two lowest integers of its field, by which a maker says none.
template <typename Integer>
bool isNone(Integer stored)
{
    return stored <= std::numeric_limits<Integer>::min() + 1;
}

/// Thousandths of what the field tells.
template <typename Integer>
double thousandths(Integer stored)
{
    return isNone(stored) ? kUnknown : stored / 1000.0;
}

/// The first that tells its width and its spacing; where none does, the first.
PulseEntry firstPulse(const File& file)
{
    const auto& pulses = file.fxd.pulses;
    const auto told = std::find_if(pulses.begin(), pulses.end(), [](const PulseEntry& pulse) {
        return pulse.width_ns > 0 && pulse.dataSpacing > 0;
    });
    if (told != pulses.end()) {
        return *told;
    }
    return pulses.empty() ? PulseEntry {} : pulses.front();
}

/// Of the wavelength that GenParams tells: nanometres, or tenths of them beyond all fibre.
double statedWavelength_nm(const File& file)
{
    const double stored = file.gen.wavelength_nm;
    return stored > kLongestWavelength_nm ? stored / 10.0 : stored;
}

bool isBackscatter(double coefficient_dB)
{
    return coefficient_dB >= kWeakestBackscatter_dB && coefficient_dB <= kStrongestBackscatter_dB;
}

/// Stated spacing, counts, without the error that one model makes in it.
double statedStep(const File& file)
{
    const double step = firstPulse(file).dataSpacing * 1e-4;
    const double range = file.fxd.acquisitionRange;
    const double excess =
        range > 0.0 ? step * static_cast<double>(file.data.samples.size()) / range : 1.0;
    const bool isKnownModel =
        contains(file.sup.mainframeId, "OFL250") || contains(file.sup.moduleId, "OFL250");
    return isKnownModel && excess > 9.0 && excess < 11.0 ? step / 10.0 : step;
}

bool hasReflectance(const KeyEvent& event)
{
    return !std::isnan(reflectance_dB(event));
}

bool isReflectiveByCode(const KeyEvent& event)
{
    return event.code[0] == '1' || event.code[0] == '2';
}

} // namespace

double statedGroupIndex(const File& file)
{
    for (const double unit : {1e5, 1e4, 1e6, 1e3}) {
        const double index = file.fxd.groupIndex / unit;
        if (index >= kLeastGroupIndex && index <= kMostGroupIndex) {
            return index;
        }
    }
    return kUnknown;
}

double groupIndex(const File& file)
{
    const double stated = statedGroupIndex(file);
    return std::isnan(stated) ? kDefaultGroupIndex : stated;
}

double metresPerCount(const File& file)
{
    return metresPerNs(groupIndex(file)) * kCountNs;
}

int nominalWavelength_nm(const File& file)
{
    const double actual_nm = actualWavelength_nm(file);
    if (file.gen.wavelength_nm != 0 || std::isnan(actual_nm)) {
        return static_cast<int>(std::lround(statedWavelength_nm(file)));
    }
    return static_cast<int>(std::lround(actual_nm));
}

double actualWavelength_nm(const File& file)
{
    const double nominal_nm = statedWavelength_nm(file);
    const double whole_nm = file.fxd.actualWavelength;
    if (whole_nm == 0.0) {
        return knownOrNaN(nominal_nm);
    }
    const double tenths_nm = whole_nm / 10.0;
    const bool isTenths = nominal_nm == 0.0
        ? whole_nm > kLongestWavelength_nm
        : std::abs(tenths_nm - nominal_nm) < std::abs(whole_nm - nominal_nm);
    return isTenths ? tenths_nm : whole_nm;
}

double pulse_ns(const File& file)
{
    return knownOrNaN(firstPulse(file).width_ns);
}

double sampleInterval_ns(const File& file)
{
    if (const double step = statedStep(file); step > 0.0) {
        return step * kCountNs;
    }
    const auto samples = static_cast<double>(file.data.samples.size());
    return samples > 0.0 ? knownOrNaN(file.fxd.acquisitionRange / samples * kCountNs) : kUnknown;
}

double spacing_m(const File& file)
{
    return sampleInterval_ns(file) * metresPerNs(groupIndex(file));
}

double range_m(const File& file)
{
    return knownOrNaN(file.fxd.acquisitionRange * metresPerCount(file));
}

double averagingTime_s(const File& file)
{
    return knownOrNaN(file.fxd.averagingTime / (writesWholeSeconds(file) ? 1.0 : 10.0));
}

double backscatter_dB(const File& file)
{
    const int stored = file.fxd.backscatter;
    const int signedStored = stored > 0x7FFF ? stored - 0x10000 : stored;
    const double counts = -std::abs(signedStored);
    for (const double reading :
         {counts / 10.0, counts / 100.0, counts, counts / 10.0 - kAtMicrosecond_dB}) {
        if (isBackscatter(reading)) {
            return reading;
        }
    }
    return kUnknown;
}

double level_dB(const File& file, std::uint16_t raw)
{
    return (65535.0 - raw) * file.data.scaleFactor / 1e6;
}

double totalLoss_dB(const File& file)
{
    return file.keyEvents ? knownOrNaN(thousandths(file.keyEvents->summary.totalLoss)) : kUnknown;
}

double returnLoss_dB(const File& file)
{
    return file.keyEvents ? knownOrNaN(file.keyEvents->summary.returnLoss / 1000.0) : kUnknown;
}

double loss_dB(const KeyEvent& event)
{
    return thousandths(event.loss);
}

double reflectance_dB(const KeyEvent& event)
{
    constexpr double kLowestMagnitude = 5.0;
    if (event.reflectance == 0 || isNone(event.reflectance)) {
        return kUnknown;
    }
    const double stored_dB = event.reflectance / 1000.0;
    if (stored_dB < 0.0) {
        return stored_dB;
    }
    // A small positive value is a saturated peak that came out above the light sent; it says
    // nothing.
    return stored_dB > kLowestMagnitude ? -stored_dB : kUnknown;
}

double attenuation_dBPerKm(const KeyEvent& event)
{
    return knownOrNaN(thousandths(event.attenuation));
}

bool isSaturated(const KeyEvent& event)
{
    return event.code[0] == '2';
}

bool isFibreEnd(const KeyEvent& event)
{
    return event.code[1] == 'E' || event.code[1] == 'D';
}

double position_m(const File& file, const KeyEvent& event)
{
    return event.position * metresPerCount(file);
}

double fibreEnd_m(const File& file)
{
    double nearest_m = kUnknown;
    if (!file.keyEvents) {
        return nearest_m;
    }
    for (const KeyEvent& event : file.keyEvents->events) {
        if (isFibreEnd(event)) {
            nearest_m = std::fmin(nearest_m, position_m(file, event)); // fmin passes over NaN
        }
    }
    return nearest_m;
}

std::string eventKinds(const File& file)
{
    if (!file.keyEvents) {
        return {};
    }
    const auto& events = file.keyEvents->events;
    const bool codeTells = std::any_of(events.begin(), events.end(), isReflectiveByCode);
    const double pulseCounts = firstPulse(file).width_ns * kCountsPerNs;
    bool startFound = false;
    std::string kinds;
    kinds.reserve(events.size());
    for (const KeyEvent& event : events) {
        const bool isNearZero = std::abs(static_cast<double>(event.position)) <= pulseCounts;
        const bool isReflective = codeTells ? isReflectiveByCode(event) : hasReflectance(event);
        if (isFibreEnd(event) || event.code[1] == 'O') {
            kinds += 'e';
        } else if (isNearZero && !startFound) {
            kinds += 's';
            startFound = true;
        } else if (isReflective) {
            kinds += 'r';
        } else {
            kinds += loss_dB(event) < 0.0 ? 'p' : 'n';
        }
    }
    return kinds;
}

std::string codeText(const KeyEvent& event)
{
    return {event.code.begin(), event.code.end()};
}

std::optional<bool> checksumVerdict(const File& file)
{
    if (file.checksum == Checksum::Matches) {
        return true;
    }
    const bool isPrivate = hasBlock(file, "ExfoNewProprietaryBlock");
    return file.checksum == Checksum::Unknown && !isPrivate ? std::optional<bool>(false)
                                                            : std::nullopt;
}

} // namespace otdr::sor
