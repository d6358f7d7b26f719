#include "platform/launcher/keysreturn.h"

#include "platform/launcher/windowbelow.h"

#include <QApplication>
#include <QTimer>
#include <QWindow>

namespace {

/// Whether a window that opens takes the keys.
bool takesKeys(const QWidget& window)
{
    const Qt::WindowType type = window.windowType();
    return (type == Qt::Window || type == Qt::Dialog)
        && !window.testAttribute(Qt::WA_ShowWithoutActivating);
}

/// Whether a dialog is open without which this window goes on to nothing.
bool isBlocked(const QWidget& window)
{
    const QWidget* modal = QApplication::activeModalWidget();
    return modal != nullptr && !window.isModal() && !modal->isAncestorOf(&window);
}

} // namespace

KeysReturn::KeysReturn(QObject* parent)
    : QObject(parent)
{
    QApplication::instance()->installEventFilter(this);
}

bool KeysReturn::eventFilter(QObject* watched, QEvent* event)
{
    const bool isTurn = event->type() == QEvent::Hide || event->type() == QEvent::Show;
    if (isTurn && !event->spontaneous() && watched->isWidgetType()) {
        auto& widget = *static_cast<QWidget*>(watched);
        if (widget.isWindow() && event->type() == QEvent::Show) {
            opened(widget);
        } else if (widget.isWindow()) {
            closed(widget);
        }
    }
    return QObject::eventFilter(watched, event);
}

void KeysReturn::opened(QWidget& window)
{
    if (!takesKeys(window)) {
        return;
    }
    if (isBlocked(window)) {
        kept = &window;
        return;
    }
    below = nullptr;
    window.activateWindow();
}

void KeysReturn::closed(QWidget& window)
{
    const QWindow* handle = window.windowHandle();
    if (handle != nullptr && handle == QGuiApplication::focusWindow()) {
        // One that had no keys leaves them where they are, which may be another program. When all
        // that the closing does has been done, the next dialog may be open.
        below = windowBelow(&window);
        QTimer::singleShot(0, this, &KeysReturn::giveBack);
    }
}

void KeysReturn::giveBack()
{
    const QWindow* focused = QGuiApplication::focusWindow();
    QWidget* next = QApplication::activeModalWidget(); // which keeps all keys from those below it
    if (next == nullptr) {
        next = kept != nullptr && kept->isVisible() ? kept.data() : below.data();
        kept = nullptr;
    }
    const bool isOurs = focused != nullptr && focused->isVisible();
    if (!below.isNull() && !isOurs && next->isVisible()) {
        next->activateWindow();
    }
    below = nullptr;
}
