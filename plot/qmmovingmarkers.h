#pragma once

#include <QList>
#include <QObject>

class QWidget;
class QmMarker;

/// Moves checked markers together: where one is dragged the others go with it, and the Left and
/// Right keys of the watched widget move them all by a pixel.
class QmMovingMarkers : public QObject
{
    Q_OBJECT

public:
    /// Watches the keys of its parent.
    explicit QmMovingMarkers(QWidget* parent);

    /// Whether keys move the markers. Drags do in either case.
    void setEnable(bool enable);

    /// From now on the marker belongs to the group while it is checked.
    void close(QmMarker* marker);

    /// Moves every checked marker of the group that can go so far.
    void moveMarkersBy(int dx);

    bool eventFilter(QObject* watched, QEvent* event) override;

public slots:
    /// A marker that was in the group before tells each of its drags once more for it: the others
    /// go twice as far.
    void addMarker(QmMarker* marker);
    void removeMarker(QmMarker* marker);

    /// Takes the others along where a checked marker was dragged.
    void markerMoved(QmMarker* m, int dx);

private slots:
    void forget(QObject* deleted);

private:
    bool enabled = true;
    QList<QmMarker*> markers;
};
