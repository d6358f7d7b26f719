#include "platform/otdr/core/storedthresholds.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace otdr::sor {

namespace {

constexpr double kDbPerUnit = 0.001;
constexpr std::uint16_t kHighestLoss = 1000;
constexpr std::uint16_t kStrongestReflectance = 20'000; // stored positive
constexpr std::uint16_t kEveryReflectance = 65'535;

std::uint16_t units(double value_dB)
{
    constexpr double kMost = std::numeric_limits<std::uint16_t>::max();
    return static_cast<std::uint16_t>(
        std::clamp(std::round(std::abs(value_dB) / kDbPerUnit), 0.0, kMost));
}

} // namespace

DetectionSettings storedThresholds(const File& file)
{
    DetectionSettings settings;
    const std::uint16_t loss = file.fxd.lossThreshold;
    if (loss > 0 && loss <= kHighestLoss) {
        settings.loss_dB = loss * kDbPerUnit;
    }
    const std::uint16_t reflectance = file.fxd.reflectanceThreshold;
    if (reflectance >= kStrongestReflectance && reflectance < kEveryReflectance) {
        settings.reflectance_dB = -reflectance * kDbPerUnit;
    }
    return settings;
}

void storeThresholds(const DetectionSettings& settings, File& file)
{
    file.fxd.lossThreshold = units(settings.loss_dB);
    file.fxd.reflectanceThreshold = units(settings.reflectance_dB);
    file.fxd.endThreshold = units(settings.end_dB);
}

} // namespace otdr::sor
