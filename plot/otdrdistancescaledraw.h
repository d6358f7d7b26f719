#pragma once

#include <qwt_scale_draw.h>

#include <QObject>
#include <QString>

class QwtScaleWidget;

/// The labels of the distance axis: metres or kilometres with as many decimals as the visible span
/// needs.
///
/// A short span near the start reads in whole metres, the same span far along the fibre in
/// kilometres with enough decimals to keep the metre.
class OtdrDistanceScaleDraw : public QObject, public QwtScaleDraw
{
    Q_OBJECT

public:
    /// The widget is the axis this draws for, and the parent.
    explicit OtdrDistanceScaleDraw(QwtScaleWidget* widget);

    [[nodiscard]] QwtText label(double value) const override;

    /// Decimals, and metres per unit (1 or 1000), for the current scale division.
    void calcPrecision(unsigned int* precision, unsigned int* divisor) const;

    void setAxisTitle(QString text);

public slots:
    /// Brings the unit in the title up to date.
    void scaleDivChanged();

protected:
    /// Leaves out what would touch the label beside it.
    void drawLabel(QPainter* painter, double value) const override;

private:
    QwtScaleWidget* widget;
};
