#pragma once

#include <QObject>
#include <QPoint>

class QWidget;

/// Turns finger drags over a widget into pan steps. It takes the presses, moves and releases of the
/// mouse on that widget; everything else passes.
class QmPanner : public QObject
{
    Q_OBJECT

public:
    /// Watches the widget, which becomes the parent; nothing is watched where it is null.
    explicit QmPanner(QWidget* watched);

    bool eventFilter(QObject* object, QEvent* event) override;

signals:
    /// A step of a drag in progress, of more than 30 pixels (Manhattan length), against the
    /// movement of the finger.
    void moving(QPoint delta);

    /// A drag has ended: its whole length from press to release, against the movement. A tap is
    /// none.
    void moved(QPoint delta);

private:
    void move(const QPoint& position);
    void release(const QPoint& position);

    QWidget* watched;
    QPoint lastPos;
    QPoint pressPos;
};
