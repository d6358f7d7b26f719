#pragma once

#include "bench/knownlink.h"
#include "platform/otdr/core/trace.h"
#include "programs/wfgather/fibre.h"

#include <cstdint>
#include <random>
#include <vector>

namespace accuracy {

/// A part of the signal that comes late.
struct Tail
{
    double part = 0.0;
    double pulses = 1.0; ///< time constant
};

enum class NoiseKind
{
    Receiver, ///< alike as the receiver's time constant makes it
    Smoothed, ///< mean of neighbours
    Red, ///< one half white, one half drifts within some pulses
    Blue, ///< differences of neighbours
};

/// What makes one instrument's traces unlike another's. Lengths in pulses unless told.
struct Instrument
{
    double pulse_ns = 100.0;
    double range_dB = 20.0; ///< from the fibre at the port down to the RMS noise
    double backscatter_dB = -81.9; ///< as it is told, at 1 ns

    double timeConstant = 0.08; ///< of the receiver
    Tail diffusion {0.003, 0.64}; ///< of all light that comes in
    Tail slow; ///< of what is shown
    double undershoot_dB = 0.0; ///< right behind a reflection of 1 dB and more
    double undershootPulses = 3.0; ///< time constant of what is left of it
    double overload_dB = 15.0; ///< above the fibre at the port
    double recovery = 1.0; ///< time constant

    double samplesPerPulse = 8.0;
    double before = 0.0; ///< of the record in front of the port
    double behind = 0.0; ///< of the record behind the end of the fibre
    double times = 1.0; ///< of the fibre's length, in all, where that is longer

    NoiseKind noise = NoiseKind::Receiver;
    double smoothed = 1.0; ///< samples, where noise is smoothed
    double wholeSmoothed = 1.0; ///< samples that are told by their mean, odd
    double fading_dB = 0.0; ///< RMS of coherent noise
    double offset = 0.0; ///< of darkness, by the RMS noise
    double floor_dB = -1e9; ///< by the RMS noise; levels below it are told as it
    double quantum_dB = 0.001;
    bool countsQuanta = false; ///< else they are told in counts of 0.001 dB
};

/// What an instrument stores of a fibre.
struct Record
{
    std::vector<std::uint16_t> counts;
    double dbPerCount = 0.001;
    otdr::TraceAxis axis;
    Sight sight;
};

[[nodiscard]] Record record(const gather::Fibre& fibre, int wavelength_nm,
                            const Instrument& instrument, std::mt19937_64& random);

} // namespace accuracy
