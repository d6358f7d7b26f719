#pragma once

#include "platform/otdr/decimize.h"
#include "platform/otdr/wf_clip_t.h"

#include <qwt_plot_curve.h>

#include <QColor>
#include <QObject>
#include <QPolygonF>

class StickColumns;

/// One drawn trace: filled from 0 dB up to its level, sampled anew for each view.
///
/// The samples come from a decimator, so that their number follows the screen and not the trace.
/// Owned by whoever made it; the plot it is attached to only draws it.
class ReflCurve : public QObject, public QwtPlotCurve
{
    Q_OBJECT

public:
    ReflCurve(wf_clip_t clip, const Reflectogram& refl, QColor color);

    /// Shows another trace; colour and place in the stack stay.
    void setReflectogram(wf_clip_t clip, const Reflectogram& refl);

    [[nodiscard]] const Reflectogram& reflectogram() const { return decimator; }

    void scale(wf_clip_t clip);

    /// Samples the trace for a window, with the computation put off until a sample is asked for;
    /// says so by dataChanged() if notify is set.
    void scale(wf_clip_t clip, bool notify);

    [[nodiscard]] QColor color() const;
    void setColor(QColor color);

    /// Raises every point below floor to it.
    void limitYBy(QPolygonF& points, double floor);

    /// The picture that a stick for each sample of the trace would give, with every column painted
    /// once. It does without the decimated samples: those would leave gaps, because two of them may
    /// fall into one pixel column and none into the next.
    void drawSeries(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                    const QRectF& canvasRect, int from, int to) const override;

signals:
    void dataChanged() override;

private:
    /// A brush that paints the columns of sticks and leaves those between them.
    [[nodiscard]] QBrush comb(const StickColumns& columns, int width, double pixelRatio) const;

    Decimize decimator;
};
