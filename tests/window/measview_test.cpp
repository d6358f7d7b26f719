#include "window/measview.h"

#include <QPushButton>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

/// The bar, with a diary of what it says in the order in which it does.
class Bar : public testing::Test
{
protected:
    Bar()
    {
        QObject::connect(&bar, qOverload<int>(&MeasView::modeChanged),
                         [this](int mode) { diary << QString("mode %1").arg(mode); });
        QObject::connect(&bar, qOverload<MeasView::Modes>(&MeasView::modeChanged),
                         [this](MeasView::Modes mode) { diary << QString("Mode %1").arg(mode); });
        note(&MeasView::usingLSAChanged, "LSA");
        note(&MeasView::visibility2pChanged, "2p");
        note(&MeasView::visibilityChanged, "visible");
        QObject::connect(&bar, &MeasView::needMarkersOnScreen, [this] { diary << "markers"; });
    }

    void note(void (MeasView::*signal)(bool), const QString& word)
    {
        QObject::connect(&bar, signal,
                         [this, word](bool on) { diary << word + (on ? " on" : " off"); });
    }

    QPushButton* button(int which) const { return bar.findChildren<QPushButton*>().at(which); }

    MeasView bar;
    QStringList diary;
};

TEST_F(Bar, OffersTwoModesAndTheMarkers)
{
    EXPECT_EQ(bar.windowTitle(), "Measurement");
    EXPECT_EQ(button(0)->text(), "2 points");
    EXPECT_EQ(button(1)->text(), "2 pt + LSA");
    EXPECT_EQ(button(2)->text(), "Markers to screen");
    EXPECT_TRUE(button(0)->isChecked());
    EXPECT_FALSE(button(1)->isChecked());
    EXPECT_FALSE(button(2)->isCheckable());
    EXPECT_FALSE(bar.isUsingLsa());
}

TEST_F(Bar, SignalsAndSlotsAreTheAgreedOnesInTheirOrder)
{
    QStringList names;
    const QMetaObject& meta = MeasView::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        names << meta.method(i).methodSignature();
    }
    EXPECT_EQ(names,
              QStringList({"usingLSAChanged(bool)", "visibility2pChanged(bool)",
                           "visibilityChanged(bool)", "modeChanged(int)",
                           "modeChanged(MeasView::Modes)", "needMarkersOnScreen()",
                           "setMode(MeasView::Modes)", "setMode(int)", "onButtonClicked(int)"}));
}

TEST_F(Bar, KnowsNoOtherButtonsThanTheTwoModes)
{
    for (const int unknown : {-1, 2}) {
        EXPECT_TRUE(QMetaObject::invokeMethod(&bar, "onButtonClicked", Q_ARG(int, unknown)));
    }
    EXPECT_TRUE(diary.isEmpty());
    EXPECT_FALSE(bar.isUsingLsa());
}

TEST_F(Bar, ModesExcludeEachOther)
{
    for (const int first : {0, 1}) {
        QTest::mouseClick(button(first), Qt::LeftButton);
        QTest::mouseClick(button(first), Qt::LeftButton); // does not let go of it
        EXPECT_TRUE(button(first)->isChecked());
        EXPECT_FALSE(button(1 - first)->isChecked());
    }
}

TEST_F(Bar, TellsAChosenModeInOrder)
{
    bar.show();
    diary.clear();
    QTest::mouseClick(button(1), Qt::LeftButton);
    EXPECT_EQ(diary, QStringList({"mode 1", "Mode 1", "LSA on", "2p on"}));
    EXPECT_TRUE(bar.isUsingLsa());
    EXPECT_FALSE(button(0)->isChecked());
    diary.clear();
    QTest::mouseClick(button(0), Qt::LeftButton);
    EXPECT_EQ(diary, QStringList({"mode 0", "Mode 0", "LSA off", "2p on"}));
}

TEST_F(Bar, ModeSetByTheProgramTakesTheWayOfAClick)
{
    bar.setMode(1);
    EXPECT_EQ(diary, QStringList({"mode 1", "Mode 1", "LSA on", "2p off"}));
    EXPECT_TRUE(button(1)->isChecked());
    diary.clear();
    bar.setMode(MeasView::TwoPoints);
    EXPECT_EQ(diary, QStringList({"mode 0", "Mode 0", "LSA off", "2p off"}));
    EXPECT_TRUE(button(0)->isChecked());
}

TEST_F(Bar, TellsTheModeInForceAgainWhenItIsChosenAgain)
{
    bar.setMode(0);
    EXPECT_EQ(diary.size(), 4);
}

TEST_F(Bar, StandsAStoredModeThatDoesNotExist)
{
    for (const int unknown : {-1, 2, 7}) {
        bar.setMode(unknown);
    }
    EXPECT_TRUE(diary.isEmpty());
    EXPECT_TRUE(button(0)->isChecked());
}

TEST_F(Bar, TellsWhenItIsShownAndHidden)
{
    bar.show();
    bar.hide();
    EXPECT_EQ(diary, QStringList({"visible on", "visible off"}));
}

TEST_F(Bar, KeepsQuietWhenTheWindowSystemShowsOrHidesIt)
{
    bar.show();
    diary.clear();
    QHideEvent minimised;
    QShowEvent restored;
    for (QEvent* event : {static_cast<QEvent*>(&minimised), static_cast<QEvent*>(&restored)}) {
        QSpontaneKeyEvent::setSpontaneous(event);
        QCoreApplication::instance()->notify(&bar, event);
    }
    EXPECT_EQ(diary, QStringList());
}

TEST_F(Bar, AsksForTheMarkers)
{
    QTest::mouseClick(button(2), Qt::LeftButton);
    EXPECT_EQ(diary, QStringList({"markers"}));
}

TEST_F(Bar, WorksByKeys)
{
    bar.show();
    button(0)->setFocus();
    for (const int next : {1, 2, 0, 1}) {
        QTest::keyClick(bar.windowHandle(), Qt::Key_Tab);
        EXPECT_EQ(bar.focusWidget(), button(next));
    }
    for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        diary.clear();
        QTest::keyClick(button(2), static_cast<Qt::Key>(key));
        EXPECT_EQ(diary, QStringList({"markers"})) << key;
    }
    QTest::keyClick(button(1), Qt::Key_Return);
    EXPECT_TRUE(bar.isUsingLsa());
}

TEST_F(Bar, FitsTheInstrument)
{
    bar.setFixedHeight(78);
    bar.resize(800, 78);
    bar.show();
    for (int i = 0; i < 3; ++i) {
        EXPECT_GE(button(i)->height(), 44);
        EXPECT_GE(button(i)->width(), qMax(140, button(i)->minimumSizeHint().width()));
        EXPECT_TRUE(bar.rect().contains(button(i)->geometry()));
    }
    EXPECT_GT(button(2)->x() - button(1)->geometry().right(), 100) << "the gap takes what is free";
}

} // namespace
