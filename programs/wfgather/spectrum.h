#pragma once

#include <map>

namespace gather {

/// A quantity of a fibre that may differ from wavelength to wavelength.
///
/// Between two wavelengths that are given it is interpolated, beyond them the nearest holds.
class Spectrum
{
public:
    /// Given at no wavelength.
    Spectrum() = default;

    /// The same at every wavelength.
    explicit Spectrum(double everywhere);

    /// Given at some wavelengths, nm.
    explicit Spectrum(std::map<int, double> values);

    [[nodiscard]] bool empty() const { return values.empty(); }

    /// NaN where empty.
    [[nodiscard]] double at(int wavelength_nm) const;

    /// At any wavelength; NaN where empty.
    [[nodiscard]] double lowest() const;

private:
    std::map<int, double> values;
};

} // namespace gather
