#pragma once

class QwtScaleDiv;
class QwtScaleDraw;

/// Which labels of an axis are drawn, so that no two touch: those of every major tick where there
/// is room, else of every second, third and so on.
namespace labelspacing {

/// From one major tick to the next, the least of them; the whole span where there are not two.
[[nodiscard]] double leastStep(const QwtScaleDiv& division);

/// Every how many-th major tick has its label.
/// \param step_px from one major tick to the next
/// \param label_px of the longest label along the axis, with the gap to the next one
[[nodiscard]] int stride(double step_px, double label_px);

/// Whether a major tick is one of those. Counted from 0 of the scale, not from the edge of the
/// view, so that a label stays with its tick while the view moves.
[[nodiscard]] bool isLabelled(double value, double step, int stride);

/// The same for the scale that is drawn, whose longest label takes so many pixels along the axis,
/// with the gap to the next one.
[[nodiscard]] bool isLabelled(const QwtScaleDraw& scale, double value, double label_px);

} // namespace labelspacing
