#include "plot/qmpanner.h"

#include "plot/pangeometry.h"

#include <QMouseEvent>
#include <QWidget>

QmPanner::QmPanner(QWidget* watched)
    : QObject(watched)
    , watched(watched)
{
    if (watched != nullptr) {
        watched->installEventFilter(this);
    }
}

bool QmPanner::eventFilter(QObject* object, QEvent* event)
{
    if (object == nullptr || object != watched) {
        return QObject::eventFilter(object, event);
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        pressPos = static_cast<QMouseEvent*>(event)->pos();
        lastPos = pressPos;
        return true;
    case QEvent::MouseMove:
        move(static_cast<QMouseEvent*>(event)->pos());
        return true;
    case QEvent::MouseButtonRelease:
        release(static_cast<QMouseEvent*>(event)->pos());
        return true;
    default:
        return false;
    }
}

void QmPanner::move(const QPoint& position)
{
    if (const auto delta = pan::step(lastPos, position)) {
        // The step may turn the event loop, in which the next move comes: it counts from here.
        lastPos = position;
        emit moving(*delta);
    }
}

void QmPanner::release(const QPoint& position)
{
    if (const auto delta = pan::drag(pressPos, position)) {
        emit moved(*delta);
    }
}
