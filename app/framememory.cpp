#include "app/framememory.h"

#include "app/windowplace.h"
#include "platform/launcher/zulauncherconfig.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace {

constexpr int kSettled_ms = 1000;

ZuLauncherConfig memory()
{
    return {"window", "place"};
}

QVector<QRect> usableScreens()
{
    QVector<QRect> places;
    const QList<QScreen*> screens = QGuiApplication::screens(); // the primary one first
    for (const QScreen* screen : screens) {
        places << screen->availableGeometry();
    }
    return places;
}

} // namespace

FrameMemory::FrameMemory(QWidget* frame)
    : frame(frame)
{
    settled.setSingleShot(true);
    settled.setInterval(kSettled_ms);
    connect(&settled, &QTimer::timeout, this, &FrameMemory::store);
}

FrameMemory::~FrameMemory()
{
    if (settled.isActive()) {
        store();
    }
}

void FrameMemory::show(const QSize& usual)
{
    const WindowPlace place = placeOn(usableScreens(), windowPlace(memory().toString()), usual);
    frame->setGeometry(place.rect);
    if (place.fillsScreen) {
        frame->setWindowState(frame->windowState() | Qt::WindowMaximized);
    }
    frame->show();
    frame->activateWindow(); // where no window manager gives it the keys
    frame->installEventFilter(this); // what the first showing does is nobody's wish
}

bool FrameMemory::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowStateChange:
        settled.start();
        break;
    case QEvent::Close:
        store();
        break;
    default:
        break;
    }
    return QObject::eventFilter(object, event);
}

void FrameMemory::store()
{
    settled.stop();
    if (frame.isNull() || frame->isMinimized()) {
        return;
    }
    const bool fills = (frame->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) != 0;
    const QRect normal = frame->normalGeometry();
    const QString text = toText({normal.isEmpty() ? frame->geometry() : normal, fills});
    if (memory().toString() != text) {
        memory().store(text);
    }
}
