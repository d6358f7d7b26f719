#pragma once

#include "programs/wfgather/fibre.h"

#include <random>
#include <vector>

/// Links with known truth for measuring how well events are found: drawn, and always the same ones.
namespace accuracy {

constexpr double kBackscatter_dB = -81.9;
constexpr double kIor = 1.4683;
constexpr double kMeasuring_s = 15.0;

/// Links of one kind, measured in one way.
struct Row
{
    const char* name;
    double pulse_ns;
    double length_km;
    int events;
    double dynamicRange_dB; // from the backscatter at the port down to the RMS noise
    double shortest_m; // between two events
    bool isSplit = false; // one of the events is a splitter
};

/// What is drawn, from access lines to long hauls, without much noise and near it.
[[nodiscard]] const std::vector<Row>& rows();

/// Evenly drawn.
[[nodiscard]] double draw(std::mt19937_64& random, double from, double to);

/// A connector, a bend or a splice, at least 20 mdB of the latter.
[[nodiscard]] gather::FibreEvent drawEvent(std::mt19937_64& random, double at_m);

/// Open, cut at an angle, or absorbing: its reflectance.
[[nodiscard]] gather::Spectrum drawEnd(std::mt19937_64& random);

/// A link of a row.
[[nodiscard]] gather::Fibre drawLink(const Row& row, std::mt19937_64& random);

} // namespace accuracy
