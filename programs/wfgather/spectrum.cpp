#include "programs/wfgather/spectrum.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace gather {

Spectrum::Spectrum(double everywhere)
    : values {{0, everywhere}}
{
}

Spectrum::Spectrum(std::map<int, double> values)
    : values(std::move(values))
{
}

double Spectrum::at(int wavelength_nm) const
{
    if (values.empty()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const auto above = values.lower_bound(wavelength_nm);
    if (above == values.begin()) {
        return above->second;
    }
    const auto below = std::prev(above);
    if (above == values.end()) {
        return below->second;
    }
    const double share = static_cast<double>(wavelength_nm - below->first)
        / static_cast<double>(above->first - below->first);
    return below->second + share * (above->second - below->second);
}

double Spectrum::lowest() const
{
    const auto least = std::min_element(values.begin(), values.end(),
                                        [](auto& a, auto& b) { return a.second < b.second; });
    return least == values.end() ? at(0) : least->second;
}

} // namespace gather
