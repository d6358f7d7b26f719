#include "app/framememory.h"
#include "app/windowplace.h"
#include "platform/launcher/zulauncherconfig.h"
#include "tests/platform/launcher/confighome.h"

#include <QGuiApplication>
#include <QScreen>
#include <QtTest>
#include <QWidget>

#include <gmock/gmock.h>

namespace {

const QRect kDesktop(0, 0, 1920, 1080);
const QRect kBeside(1920, 0, 1280, 1024);
const QRect kInstrument(0, 0, 800, 480);
const QSize kUsual(1280, 800);

WindowPlace placed(const QRect& wish, const QVector<QRect>& screens = {kDesktop, kBeside})
{
    return placeOn(screens, WindowPlace {wish, false}, kUsual);
}

TEST(WindowPlace, IsKeptAsAText)
{
    for (const WindowPlace& place : {WindowPlace {QRect(20, 40, 1280, 800), false},
                                     WindowPlace {QRect(-300, -20, 640, 480), true}}) {
        EXPECT_EQ(windowPlace(toText(place)), place) << qPrintable(toText(place));
    }
    EXPECT_EQ(toText({QRect(-300, 20, 640, 480), true}), "640x480+-300+20 filled");
}

TEST(WindowPlace, OfADamagedTextIsNone)
{
    for (const char* text : {"", "1280x800", "0x0+0+0", "axb+c+d", "1280x800+1+2 full",
                             "999999x800+0+0", "1280x-800+0+0"}) {
        EXPECT_FALSE(windowPlace(text)) << text;
    }
}

TEST(WindowPlace, IsTakenAgain)
{
    EXPECT_EQ(placed(QRect(100, 200, 900, 600)).rect, QRect(100, 200, 900, 600));
    EXPECT_EQ(placed(QRect(2000, 200, 900, 600)).rect, QRect(2000, 200, 900, 600));
    EXPECT_FALSE(placed(QRect(100, 200, 900, 600)).fillsScreen);
    EXPECT_TRUE(
        placeOn({kDesktop}, WindowPlace {QRect(1, 40, 900, 600), true}, kUsual).fillsScreen);
}

TEST(WindowPlace, IsWhollyOnItsScreen)
{
    for (const QRect& wish : {QRect(-500, 100, 900, 600), QRect(1500, 900, 900, 600),
                              QRect(3000, -300, 900, 600), QRect(0, 0, 5000, 4000)}) {
        const QRect rect = placed(wish).rect;
        EXPECT_TRUE(kDesktop.contains(rect) || kBeside.contains(rect))
            << qPrintable(toText({wish, false}));
    }
    EXPECT_EQ(placed(QRect(1000, 100, 900, 600)).rect.size(), QSize(900, 600));
}

TEST(WindowPlace, LeavesTheEdgeByWhichItIsMovedInSight)
{
    EXPECT_GE(placed(QRect(100, -10, 900, 600)).rect.top(), 24);
    EXPECT_EQ(placed(QRect(0, 0, 1920, 1080)).rect, kDesktop) << "where it fills all there is none";
}

TEST(WindowPlace, OnAScreenThatIsGoneIsTheMiddleOfTheFirst)
{
    const WindowPlace place = placed(QRect(5000, 100, 900, 600), {kDesktop});
    EXPECT_EQ(place.rect.size(), QSize(900, 600));
    EXPECT_EQ(place.rect.center(), kDesktop.center());
}

TEST(WindowPlace, AtTheFirstStartIsTheMiddleInTheUsualSize)
{
    const WindowPlace place = placeOn({kDesktop, kBeside}, std::nullopt, kUsual);
    EXPECT_EQ(place.rect.size(), kUsual);
    EXPECT_EQ(place.rect.center(), kDesktop.center());
    EXPECT_FALSE(place.fillsScreen);
}

TEST(WindowPlace, FillsTheScreenOfAnInstrument)
{
    EXPECT_EQ(placeOn({kInstrument}, std::nullopt, kUsual), (WindowPlace {kInstrument, true}));
    EXPECT_EQ(placed(QRect(100, 200, 500, 300), {kInstrument}), (WindowPlace {kInstrument, true}));
}

class RememberedFrame : public testing::Test
{
protected:
    /// The middle of the screen that the tests have, so that nothing has to be moved.
    static QRect somewhere()
    {
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        return {screen.x() + 40, screen.y() + 60, screen.width() / 2, screen.height() / 2};
    }

    static QString remembered() { return ZuLauncherConfig("window", "place").toString(); }

    const testing_support::ConfigHome config;
};

TEST_F(RememberedFrame, StandsWhereItStood)
{
    {
        QWidget frame;
        FrameMemory memory(&frame);
        memory.show(QSize(300, 200));
        frame.setGeometry(somewhere());
        frame.close();
    }
    QWidget frame;
    FrameMemory memory(&frame);
    memory.show(QSize(300, 200));
    EXPECT_EQ(frame.geometry(), somewhere());
    EXPECT_FALSE(frame.isMaximized()) << qPrintable(remembered());
}

TEST_F(RememberedFrame, FillsTheScreenAgainAndKnowsItsSizeBefore)
{
    {
        QWidget frame;
        FrameMemory memory(&frame);
        memory.show(QSize(300, 200));
        frame.setGeometry(somewhere());
        frame.showMaximized();
        frame.close();
    }
    EXPECT_EQ(remembered(), toText({somewhere(), true}));
    QWidget frame;
    FrameMemory memory(&frame);
    memory.show(QSize(300, 200));
    EXPECT_TRUE(frame.isMaximized());
}

TEST_F(RememberedFrame, ThatNobodyMovedIsNotStored)
{
    QWidget frame;
    {
        FrameMemory memory(&frame);
        memory.show(QSize(300, 200));
    }
    EXPECT_EQ(remembered(), "");
}

TEST_F(RememberedFrame, IsStoredAWhileAfterItWasMoved)
{
    QWidget frame;
    FrameMemory memory(&frame);
    memory.show(QSize(300, 200));
    frame.setGeometry(somewhere());
    EXPECT_TRUE(QTest::qWaitFor([] { return !remembered().isEmpty(); }, 10'000))
        << "what ends without closing the window loses its place";
}

} // namespace
