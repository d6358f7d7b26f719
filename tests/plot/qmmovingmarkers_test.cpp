#include "plot/qmmarker.h"
#include "plot/qmmovingmarkers.h"
#include "tests/plot/finger.h"

#include <QtTest>

#include <gmock/gmock.h>

#include <array>
#include <memory>

namespace {

using testing::ElementsAre;

class MovingMarkers : public testing::Test
{
protected:
    MovingMarkers()
        : finger(window)
    {
        window.resize(800, 400);
        int x = 0;
        for (auto& marker : markers) {
            marker = std::make_unique<QmMarker>(&window);
            marker->move(x += 100, 0);
            group.close(marker.get());
        }
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    void check(std::initializer_list<int> which)
    {
        for (const int i : which) {
            markers.at(i)->setChecked(true);
        }
    }

    /// A drag too slow to be a tap.
    void drag(int which, int dx)
    {
        finger.press(*markers.at(which), QPoint(14, 400 - 26));
        finger.moveBy(dx);
        QTest::qWait(80);
        finger.release();
    }

    [[nodiscard]] std::array<int, 4> places() const
    {
        return {markers[0]->x(), markers[1]->x(), markers[2]->x(), markers[3]->x()};
    }

    QWidget window;
    QmMovingMarkers group {&window};
    std::array<std::unique_ptr<QmMarker>, 4> markers;
    testing_support::Finger finger;
};

TEST_F(MovingMarkers, DragOfACheckedMarkerTakesTheOtherCheckedOnesAlong)
{
    check({0, 1, 2});
    drag(1, 30);
    EXPECT_THAT(places(), ElementsAre(130, 230, 330, 400));
}

TEST_F(MovingMarkers, DragOfAnUncheckedMarkerMovesItAlone)
{
    check({0, 1, 2});
    drag(3, 30);
    EXPECT_THAT(places(), ElementsAre(100, 200, 300, 430));
}

TEST_F(MovingMarkers, MarkerThatWasUncheckedMovesAlone)
{
    check({0, 1});
    markers[1]->setChecked(false);
    drag(1, 30);
    EXPECT_THAT(places(), ElementsAre(100, 230, 300, 400));
}

TEST_F(MovingMarkers, MarkerThatCannotGoSoFarStays)
{
    check({0, 1});
    markers[0]->move(20, 0);
    drag(1, -30);
    EXPECT_THAT(places(), ElementsAre(20, 170, 300, 400));
}

TEST_F(MovingMarkers, ArrowKeysMoveAllCheckedMarkersByAPixel)
{
    check({0, 2});
    QTest::keyClick(&window, Qt::Key_Right);
    QTest::keyClick(&window, Qt::Key_Right);
    EXPECT_THAT(places(), ElementsAre(102, 200, 302, 400));
    QTest::keyClick(&window, Qt::Key_Left);
    EXPECT_THAT(places(), ElementsAre(101, 200, 301, 400));
}

TEST_F(MovingMarkers, ArrowKeysAreConsumedAndOtherEventsAreNot)
{
    const auto consumed = [this](QEvent::Type type, int key) {
        QKeyEvent event(type, key, Qt::NoModifier);
        return group.eventFilter(&window, &event);
    };
    EXPECT_TRUE(consumed(QEvent::KeyPress, Qt::Key_Left));
    EXPECT_TRUE(consumed(QEvent::KeyPress, Qt::Key_Right));
    EXPECT_FALSE(consumed(QEvent::KeyPress, Qt::Key_Up));
    EXPECT_FALSE(consumed(QEvent::KeyRelease, Qt::Key_Left));
}

TEST_F(MovingMarkers, KeysOfOtherWidgetsMoveNothing)
{
    check({0});
    QWidget other;
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
    EXPECT_FALSE(group.eventFilter(&other, &event));
    EXPECT_EQ(markers[0]->x(), 100);
}

TEST_F(MovingMarkers, SwitchedOffGroupLeavesTheKeysAlone)
{
    check({0});
    group.setEnable(false);
    QTest::keyClick(&window, Qt::Key_Right);
    EXPECT_EQ(markers[0]->x(), 100);
    group.setEnable(true);
    group.setEnable(true);
    QTest::keyClick(&window, Qt::Key_Right);
    EXPECT_EQ(markers[0]->x(), 101);
}

TEST_F(MovingMarkers, SwitchedOffGroupStillFollowsDrags)
{
    check({0, 1});
    group.setEnable(false);
    drag(0, 20);
    EXPECT_EQ(markers[1]->x(), 220);
}

TEST_F(MovingMarkers, MarkerCheckedAgainTakesTheOthersTwiceAsFar)
{
    check({0, 1});
    markers[0]->setChecked(false);
    markers[0]->setChecked(true);
    drag(0, 15);
    EXPECT_THAT(places(), ElementsAre(115, 230, 300, 400));
}

TEST_F(MovingMarkers, RemovedMarkerIsGoneHoweverOftenItWasAdded)
{
    check({0, 1});
    group.addMarker(markers[1].get());
    group.removeMarker(markers[1].get());
    group.moveMarkersBy(5);
    EXPECT_THAT(places(), ElementsAre(105, 200, 300, 400));
}

TEST_F(MovingMarkers, DeletedMarkerIsForgotten)
{
    check({0, 1});
    markers[0].reset();
    group.moveMarkersBy(5);
    EXPECT_EQ(markers[1]->x(), 205);
}

} // namespace
