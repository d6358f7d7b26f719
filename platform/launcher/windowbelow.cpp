#include "platform/launcher/windowbelow.h"

#include <QApplication>
#include <QWidget>

QWidget* windowBelow()
{
    return windowBelow(QApplication::activeWindow());
}

QWidget* windowBelow(QWidget* active)
{
    QWidget* window = active;
    while (window != nullptr && (window->isHidden() || window->windowType() == Qt::Popup)) {
        window = window->parentWidget() == nullptr ? nullptr : window->parentWidget()->window();
    }
    return window;
}
