#include "app/picture.h"

#include <QCoreApplication>
#include <QPixmap>
#include <QThreadPool>
#include <QWidget>

bool savePicture(QWidget& window, const QString& file)
{
    // A finished computation announces itself by a queued signal, and what that changes is laid out
    // later still.
    for (int round = 0; round < 3; ++round) {
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents();
    }
    return window.grab().save(file, "PNG");
}
