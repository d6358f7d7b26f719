#include "programs/otdrinfo/csv.h"

#include "platform/otdr/core/constants.h"
#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorvalues.h"

#include <array>
#include <charconv>
#include <cmath>

namespace otdrinfo {

namespace {

namespace sor = otdr::sor;

constexpr int kDistanceDecimals = 6; // micrometres: finer than any sample spacing
constexpr int kLongestNumber = 400; // a double without an exponent

void appendNumber(QByteArray& text, double value, int decimals)
{
    std::array<char, kLongestNumber> digits {};
    const auto end =
        std::to_chars(digits.begin(), digits.end(), value, std::chars_format::fixed, decimals).ptr;
    text.append(digits.data(), static_cast<int>(end - digits.begin()));
}

} // namespace

QByteArray csvOf(const sor::File& file)
{
    const sor::Axis axis = sor::axisOf(file);
    const double metres = otdr::metresPerNs(sor::groupIndex(file));
    const bool hasDistance = std::isfinite(axis.sampleInterval_ns);
    // A scale of whole thousandths leaves nothing behind the third decimal.
    const int levelDecimals = file.data.scaleFactor % 1000 == 0 ? 3 : 6;
    QByteArray text("distance_m,level_db\n");
    text.reserve(static_cast<int>(file.data.samples.size()) * 24);
    for (std::size_t i = 0; i < file.data.samples.size(); ++i) {
        if (hasDistance) {
            const double time_ns =
                axis.firstSample_ns + static_cast<double>(i) * axis.sampleInterval_ns;
            appendNumber(text, time_ns * metres, kDistanceDecimals);
        }
        text += ',';
        appendNumber(text, sor::level_dB(file, file.data.samples[i]), levelDecimals);
        text += '\n';
    }
    return text;
}

} // namespace otdrinfo
