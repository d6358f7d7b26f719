#pragma once

#include <QLabel>
#include <QPointF>

/// A small rounded label beside a marker: its distance and the level there.
class QmMarkerLegend : public QLabel
{
    Q_OBJECT

public:
    /// p is a point of the trace: distance in m, level in dB.
    QmMarkerLegend(const QPointF& p, QWidget* parent);

public slots:
    /// Shows a text as large as it is; lines are separated by line feeds.
    void setText(const QString& text);
    void setText(double x_m, double y_dB);
    void setText(const QPointF& p);

    /// Stands beside a marker at column x, to the right of it unless it would leave the parent
    /// there. A negative y leaves the row as it is.
    void moveTo(int x, int y = -1);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void fit(const QString& text);
};
