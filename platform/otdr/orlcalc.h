#pragma once

#include "platform/otdr/reflectogram.h"

#include <mutex>

/// Optical return loss of a stretch of fibre. May be asked from any thread while the trace is
/// exchanged.
class ORLCalc // NOLINT(readability-identifier-naming): a given name
{
public:
    explicit ORLCalc(const Reflectogram& refl);
    virtual ~ORLCalc() = default;
    ORLCalc(const ORLCalc&) = delete;
    ORLCalc& operator=(const ORLCalc&) = delete;
    void setReflectogram(Reflectogram refl);

    /// Return loss between two distances, in either order, dB; NaN where it cannot be told.
    [[nodiscard]] virtual double recalculate(double a_m, double b_m);

private:
    std::mutex mutex;
    Reflectogram refl;
};
