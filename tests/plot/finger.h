#pragma once

#include <QPoint>

class QWidget;

namespace testing_support {

/// A finger on the touch screen: its events take the way through the window system, so that the
/// widget under the press gets all that follows, wherever the finger goes.
class Finger
{
public:
    /// Touches nothing yet.
    explicit Finger(QWidget& window);
    ~Finger(); ///< leaves the screen
    Finger(const Finger&) = delete;
    Finger& operator=(const Finger&) = delete;

    void press(const QWidget& widget, QPoint at); ///< at is in the widget's pixels
    void moveBy(int dx, int dy = 0);
    void release();
    void tap(const QWidget& widget, QPoint at);
    void doubleTap(const QWidget& widget, QPoint at);

private:
    QWidget& window;
    QPoint place;
    bool isDown = false;
};

} // namespace testing_support
