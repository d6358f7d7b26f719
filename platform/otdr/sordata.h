#pragma once

#include "platform/otdr/event.h"
#include "platform/otdr/supparamsblock.h"

#include <QtGlobal>

#include <optional>

/// How a trace was measured, as its file says it.
struct FxdParamsBlock
{
    qint64 dateTime = 0; ///< seconds since 1970-01-01 UTC
    double wavelength = 0.0; ///< nm, measured
    double pulse = 0.0; ///< ns
    double ior = 0.0; ///< group index
    double backscatter = 0.0; ///< dB at 1 ns
    quint32 averages = 0;
    double averagingTime = 0.0; ///< s
    double range = 0.0; ///< m
};

/// End-to-end figures of a trace; NaN where they were not measured.
struct KeyEventsBlock
{
    double totalLoss = Event::kUnknown; ///< dB
    double orl = Event::kUnknown; ///< dB
};

/// What a trace file says beside the samples and the events. A value: a change makes a new one.
class SorData
{
public:
    [[nodiscard]] const FxdParamsBlock& fxdParams() const { return fxd; }

    /// Whether the file says how it was measured; where not, what stands in its place was assumed.
    [[nodiscard]] bool hasFxdParams() const { return isFxdTold; }

    /// Null where nothing is known yet.
    [[nodiscard]] const KeyEventsBlock* keyEvents() const { return key ? &*key : nullptr; }

    [[nodiscard]] const SupParamsBlock& supParams() const { return sup; }

    void setFxdParams(const FxdParamsBlock& params, bool isTold = true)
    {
        fxd = params;
        isFxdTold = isTold;
    }

    void setKeyEvents(const KeyEventsBlock& block) { key = block; }

    void setSupParams(const SupParamsBlock& params) { sup = params; }

private:
    FxdParamsBlock fxd;
    bool isFxdTold = false;
    std::optional<KeyEventsBlock> key;
    SupParamsBlock sup;
};
