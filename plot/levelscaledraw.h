#pragma once

#include <qwt_scale_draw.h>

/// The labels of the level axis: all with the same number of decimals, as few as tell its ticks
/// apart.
class LevelScaleDraw : public QwtScaleDraw
{
public:
    [[nodiscard]] QwtText label(double value) const override;

    /// Of each label of the current scale division.
    [[nodiscard]] int decimals() const;

protected:
    /// Leaves out what would touch the label beside it.
    void drawLabel(QPainter* painter, double value) const override;
};
