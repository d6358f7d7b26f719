#include "plot/qmmovingmarkers.h"

#include "plot/qmmarker.h"

#include <QKeyEvent>
#include <QWidget>

#include <algorithm>

QmMovingMarkers::QmMovingMarkers(QWidget* parent)
    : QObject(parent)
{
    parent->installEventFilter(this);
}

void QmMovingMarkers::setEnable(bool enable)
{
    if (enable == enabled) {
        return;
    }
    enabled = enable;
    if (enabled) {
        parent()->installEventFilter(this);
    } else {
        parent()->removeEventFilter(this);
    }
}

void QmMovingMarkers::close(QmMarker* marker)
{
    connect(marker, SIGNAL(checked( QmMarker* )), SLOT(addMarker( QmMarker* )));
    connect(marker, SIGNAL(unchecked( QmMarker* )), SLOT(removeMarker( QmMarker* )));
}

void QmMovingMarkers::addMarker(QmMarker* marker)
{
    markers << marker;
    connect(marker, SIGNAL(movedBy( QmMarker*, int )), SLOT(markerMoved( QmMarker*, int )));
    connect(marker, SIGNAL(destroyed( QObject* )), SLOT(forget( QObject* )), Qt::UniqueConnection);
}

void QmMovingMarkers::removeMarker(QmMarker* marker)
{
    markers.removeAll(marker);
}

void QmMovingMarkers::forget(QObject* deleted)
{
    const auto isDeleted = [deleted](QmMarker* marker) { return marker == deleted; };
    markers.erase(std::remove_if(markers.begin(), markers.end(), isDeleted), markers.end());
}

void QmMovingMarkers::markerMoved(QmMarker* m, int dx)
{
    if (!m->isChecked()) {
        return;
    }
    for (QmMarker* marker : QList<QmMarker*>(markers)) { // a slot may change the group
        if (marker != m && marker->isChecked()) {
            marker->moveBy(dx);
        }
    }
}

void QmMovingMarkers::moveMarkersBy(int dx)
{
    for (QmMarker* marker : QList<QmMarker*>(markers)) {
        if (marker->isChecked()) {
            marker->moveBy(dx);
        }
    }
}

bool QmMovingMarkers::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != parent()) {
        return QObject::eventFilter(watched, event);
    }
    if (event->type() != QEvent::KeyPress) {
        return false;
    }
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Left:
        moveMarkersBy(-1);
        return true;
    case Qt::Key_Right:
        moveMarkersBy(1);
        return true;
    default:
        return false;
    }
}
