#include "tests/plot/finger.h"

#include <QTest>
#include <QWindow>

namespace testing_support {

Finger::Finger(QWidget& window)
    : window(window)
{
}

Finger::~Finger()
{
    if (isDown) {
        release();
    }
}

void Finger::press(const QWidget& widget, QPoint at)
{
    place = widget.mapTo(&window, at);
    isDown = true;
    QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, place);
    QCoreApplication::processEvents();
}

void Finger::moveBy(int dx, int dy)
{
    place += QPoint(dx, dy);
    QTest::mouseMove(window.windowHandle(), place);
    QCoreApplication::processEvents();
}

void Finger::release()
{
    isDown = false;
    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, place);
    QCoreApplication::processEvents();
}

void Finger::tap(const QWidget& widget, QPoint at)
{
    press(widget, at);
    release();
}

void Finger::doubleTap(const QWidget& widget, QPoint at)
{
    place = widget.mapTo(&window, at);
    QTest::mouseDClick(window.windowHandle(), Qt::LeftButton, {}, place);
    QCoreApplication::processEvents();
}

} // namespace testing_support
