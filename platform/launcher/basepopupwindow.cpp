#include "platform/launcher/basepopupwindow.h"

#include "platform/launcher/popupgeometry.h"

#include <QGuiApplication>
#include <QScreen>
#include <QShowEvent>

BasePopupWindow::BasePopupWindow(QWidget* parent)
    : QFrame(parent, Qt::Popup | Qt::FramelessWindowHint)
{
    setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    setAttribute(Qt::WA_NoMouseReplay); // the tap that closes it is not one on what lies below
}

QRect BasePopupWindow::screenAt(QPoint position)
{
    const QScreen* screen = QGuiApplication::screenAt(position);
    return (screen != nullptr ? screen : QGuiApplication::primaryScreen())->availableGeometry();
}

void BasePopupWindow::showWithoutCaller(QPoint position, const QSize& size)
{
    showAt(popupgeometry::keptInside(screenAt(position), QRect(position, size)), size);
}

void BasePopupWindow::showAtCaller(const QWidget& caller, const QSize& size)
{
    const QRect place(caller.mapToGlobal(QPoint()), caller.size());
    showAt(popupgeometry::beside(screenAt(place.center()), place, size), size);
}

void BasePopupWindow::showAt(QPoint position, const QSize& size)
{
    resize(size);
    move(position);
    show();
}

void BasePopupWindow::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    if (!event->spontaneous()) {
        setFocus(Qt::PopupFocusReason);
        focusNextChild();
    }
}
