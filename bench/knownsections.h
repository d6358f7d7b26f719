#pragma once

#include <vector>

namespace otdr {
struct Detection;
} // namespace otdr

namespace accuracy {

class KnownLink;

/// How far the fibre between two events was told from what it is, for each section between two true
/// events, found to half a pulse, that has no other one on it.
struct SectionErrors
{
    std::vector<double> returnLoss_dB;
    std::vector<double> attenuation; ///< by the least-squares error of a line through all of it
};

/// backscatter_dB: coefficient that the instrument takes the fibre for, dB at 1 ns.
[[nodiscard]] SectionErrors sectionErrors(const KnownLink& known, const otdr::Detection& found,
                                          double backscatter_dB);

} // namespace accuracy
