#pragma once

/// Heights at which the items of a chart lie on one another; those of one height in the order in
/// which they were attached.
namespace stackorder {

constexpr double kGrid = 20.0;
constexpr double kCurve = 20.0;
constexpr double kFibreBand = 60.0; ///< over all curves but the main one
constexpr double kMainCurve = 100.0;
constexpr double kEventMark = 1000.0;

} // namespace stackorder
