#pragma once

#include "twomarkers/twomarkersresultwidget.h"

#include <QGridLayout>
#include <QLabel>

namespace testing_support {

/// What the table of results shows in a row.
inline QString shownValue(const Waveform::TwoMarkersResultWidget* results, int row)
{
    const auto* grid = qobject_cast<QGridLayout*>(results->layout());
    return qobject_cast<QLabel*>(grid->itemAtPosition(row, 1)->widget())->text();
}

} // namespace testing_support
