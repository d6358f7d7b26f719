#pragma once

namespace otdr {

/// Speed of light in vacuum, m/s, exact (SI).
constexpr double kSpeedOfLight = 299'792'458.0;

/// A SOR file counts time in units of 100 ps of one-way propagation, 0.2 ns round trip.
constexpr double kCountNs = 0.2;

/// Group index taken where a file states none or an impossible one.
constexpr double kDefaultGroupIndex = 1.4680;

/// Metres of cable for one nanosecond of round-trip time.
///
/// c / (2 n), divided by (1 + helix/100): the helix factor is the percentage by which the fibre is
/// longer than the cable it lies in.
[[nodiscard]] constexpr double metresPerNs(double groupIndex, double helix_percent = 0.0)
{
    return kSpeedOfLight * 1e-9 / (2.0 * groupIndex) / (1.0 + helix_percent / 100.0);
}

} // namespace otdr
