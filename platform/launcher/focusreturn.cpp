#include "platform/launcher/focusreturn.h"

#include <QApplication>
#include <QFocusEvent>
#include <QTimer>

namespace {

bool canHaveFocus(const QWidget& widget)
{
    return widget.isEnabled() && widget.isVisible();
}

} // namespace

FocusReturn::FocusReturn(QObject* parent)
    : QObject(parent)
{
    QApplication::instance()->installEventFilter(this);
}

bool FocusReturn::eventFilter(QObject* watched, QEvent* event)
{
    if (!watched->isWidgetType()) {
        return QObject::eventFilter(watched, event);
    }
    auto& widget = *static_cast<QWidget*>(watched);
    if (event->type() == QEvent::KeyPress) {
        leaving = nullptr; // what goes now goes by the user's will
        return leadOn(widget, static_cast<QKeyEvent*>(event)->key());
    }
    follow(widget, *event);
    return QObject::eventFilter(watched, event);
}

void FocusReturn::follow(QWidget& widget, QEvent& event)
{
    switch (event.type()) {
    case QEvent::FocusOut:
        leave(widget, static_cast<QFocusEvent&>(event).reason());
        break;
    case QEvent::FocusIn:
        take(widget, static_cast<QFocusEvent&>(event).reason());
        break;
    case QEvent::Hide: // Qt takes the focus of a hidden one later, that of a disabled one before
        if (widget.isHidden() && widget.window()->focusWidget() == &widget) {
            leave(widget, Qt::OtherFocusReason);
        }
        break;
    case QEvent::Show:
        if (widget.isWindow() && widget.focusWidget() != nullptr) {
            resting = widget.focusWidget();
        }
        [[fallthrough]];
    case QEvent::EnabledChange:
    case QEvent::HideToParent:
    case QEvent::ShowToParent:
        if (hadFocus(widget) && !canHaveFocus(widget)) {
            lose(widget);
        } else if (&widget == lost && canHaveFocus(widget)) {
            giveBack(widget);
        }
        break;
    default:
        break;
    }
}

void FocusReturn::leave(QWidget& widget, Qt::FocusReason reason)
{
    if (reason == Qt::ActiveWindowFocusReason) {
        resting = &widget;
        return;
    }
    leaving = &widget;
    QTimer::singleShot(0, this, [this] { leaving = nullptr; });
}

/// Whether a widget that is being disabled or hidden had the focus until then: nobody is told of a
/// change in a window that is not active.
bool FocusReturn::hadFocus(const QWidget& widget) const
{
    return &widget == leaving || (&widget == resting && !widget.isActiveWindow());
}

void FocusReturn::take(QWidget& widget, Qt::FocusReason reason)
{
    // A window that becomes active gives the focus to something; that is nobody's choice.
    const bool isChosen = reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason;
    if (isChosen && lost && widget.window() == lost->window()) {
        lost = nullptr;
    }
}

void FocusReturn::lose(QWidget& widget)
{
    leaving = nullptr;
    resting = nullptr;
    next = widget.window()->focusWidget();
    if (next == &widget) {
        next = nullptr;
    }
    if (next) {
        next->clearFocus();
    }
    lost = &widget;
}

void FocusReturn::giveBack(QWidget& widget)
{
    lost = nullptr;
    widget.setFocus(Qt::OtherFocusReason);
    resting = &widget;
}

/// Without a focus Tab would begin with the first control of the window.
bool FocusReturn::leadOn(QWidget& widget, int key)
{
    const bool isTab = key == Qt::Key_Tab || key == Qt::Key_Backtab;
    if (!isTab || !lost || !next || &widget != widget.window() || widget.window() != lost->window()
        || widget.focusWidget() != nullptr || !canHaveFocus(*next)) {
        return false;
    }
    next->setFocus(key == Qt::Key_Tab ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return key == Qt::Key_Tab; // a step back is one from there
}
