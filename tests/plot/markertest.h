#pragma once

#include "plot/qmmarker.h"
#include "tests/plot/finger.h"

#include <QMouseEvent>
#include <QObject>
#include <QtTest>

#include <gmock/gmock.h>

#include <string>
#include <vector>

/// A marker whose clock stands still until it is set.
class ClockedMarker : public QmMarker
{
    Q_OBJECT

public:
    using QmMarker::QmMarker;
    qint64 time = 1000;

protected:
    [[nodiscard]] qint64 now() const override { return time; }
};

/// Writes down what a marker says, in order.
class MarkerListener : public QObject
{
    Q_OBJECT

public:
    explicit MarkerListener(QmMarker* marker)
        : marker(marker)
    {
        connect(marker, SIGNAL(checked(QmMarker*)), SLOT(onChecked(QmMarker*)));
        connect(marker, SIGNAL(unchecked(QmMarker*)), SLOT(onUnchecked(QmMarker*)));
        connect(marker, SIGNAL(moved(QmMarker*)), SLOT(onMoved(QmMarker*)));
        connect(marker, SIGNAL(movedBy(QmMarker*, int)), SLOT(onMovedBy(QmMarker*, int)));
        connect(marker, SIGNAL(longTapped(QmMarker*)), SLOT(onLongTapped(QmMarker*)));
        connect(marker, SIGNAL(slideDown(QmMarker*)), SLOT(onSlideDown(QmMarker*)));
        connect(marker, SIGNAL(doubleClicked(QmMarker*)), SLOT(onDoubleClicked(QmMarker*)));
    }

    [[nodiscard]] std::vector<std::string> take()
    {
        std::vector<std::string> result;
        result.swap(heard);
        return result;
    }

private slots:

    void onChecked(QmMarker* from) { hear(from, "checked"); }

    void onUnchecked(QmMarker* from) { hear(from, "unchecked"); }

    void onMoved(QmMarker* from) { hear(from, "moved"); }

    void onMovedBy(QmMarker* from, int dx) { hear(from, QString("movedBy %1").arg(dx)); }

    void onLongTapped(QmMarker* from) { hear(from, "longTapped"); }

    void onSlideDown(QmMarker* from) { hear(from, "slideDown"); }

    void onDoubleClicked(QmMarker* from) { hear(from, "doubleClicked"); }

private:
    void hear(QmMarker* from, const QString& what)
    {
        EXPECT_EQ(from, marker);
        heard.push_back(what.toStdString());
    }

    QmMarker* marker;
    std::vector<std::string> heard;
};

/// A marker on a canvas, a finger, and what the marker says.
class Marker : public testing::Test
{
protected:
    Marker()
        : marker(&canvas)
        , listener(&marker)
        , finger(window)
    {
        window.resize(600, 400);
        canvas.setGeometry(50, 20, 500, 300);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        marker.centerOn(200.0);
    }

    /// The middle of the knob.
    [[nodiscard]] QPoint knob() const { return {14, marker.height() - 26}; }

    void tap(qint64 milliseconds)
    {
        finger.press(marker, knob());
        marker.time += milliseconds;
        finger.release();
    }

    /// A move that the marker gets without having got the press.
    void moveFingerTo(QPoint at)
    {
        QMouseEvent event(QEvent::MouseMove, at, marker.mapToGlobal(at), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&marker, &event);
    }

    QWidget window;
    QWidget canvas {&window};
    ClockedMarker marker;
    MarkerListener listener;
    testing_support::Finger finger;
};
