#pragma once

#include <array>
#include <cmath>

namespace OTDR {

/// What ordinary single-mode fibre (ITU-T G.652) has at a wavelength, taken where nobody tells it.
struct UsualFibre
{
    int wavelength_nm;
    double groupIndex;
    double backscatter_dB; ///< coefficient at 1 ns
};

/// In order of wavelength. The settings of a first start tell the same; a test sees to that.
inline constexpr std::array<UsualFibre, 4> kUsualFibre {{
    {1310, 1.4677, -79.5},
    {1490, 1.46815, -81.5},
    {1550, 1.4683, -81.9},
    {1625, 1.4685, -82.5},
}};

/// At the nearest wavelength of the table; at the shortest where none is known, which is 0.
[[nodiscard]] inline const UsualFibre& usualFibre(int wavelength_nm)
{
    const UsualFibre* nearest = &kUsualFibre.front();
    for (const UsualFibre& fibre : kUsualFibre) {
        if (std::abs(fibre.wavelength_nm - wavelength_nm)
            < std::abs(nearest->wavelength_nm - wavelength_nm)) {
            nearest = &fibre;
        }
    }
    return *nearest;
}

} // namespace OTDR
