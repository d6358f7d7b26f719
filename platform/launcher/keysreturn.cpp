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
        auto* widget = static_cast<QWidget*>(watched);
        if (widget->isWindow()) {
            follow(*widget, event->type());
        }
    }
    return QObject::eventFilter(watched, event);
}

void KeysReturn::follow(QWidget& window, QEvent::Type event)
{
    const QWindow* handle = window.windowHandle();
    if (event == QEvent::Show && takesKeys(window)) {
        below = nullptr;
    } else if (event == QEvent::Hide && handle != nullptr
               && handle == QGuiApplication::focusWindow()) {
        // One that had no keys leaves them where they are, which may be another program. When all
        // that the closing does has been done, the next dialog may be open.
        below = windowBelow(&window);
        QTimer::singleShot(0, this, &KeysReturn::giveBack);
    }
}

void KeysReturn::giveBack()
{
    const QWindow* focused = QGuiApplication::focusWindow();
    QWidget* modal = QApplication::activeModalWidget(); // which keeps all keys from those below it
    QWidget* next = modal != nullptr ? modal : below.data();
    const bool isOurs = focused != nullptr && focused->isVisible();
    if (!below.isNull() && !isOurs && next->isVisible()) {
        next->activateWindow();
    }
    below = nullptr;
}
