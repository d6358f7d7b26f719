#pragma once

#include "plot/plot.h"

namespace testing_support {

/// A plot that tells how many follow its views.
class CountingPlot : public Waveform::Plot
{
    Q_OBJECT

public:
    [[nodiscard]] int followers() const
    {
        return receivers(SIGNAL(transformMapsChanged(QwtScaleMap, QwtScaleMap)));
    }
};

} // namespace testing_support
