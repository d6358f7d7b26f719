#include "platform/launcher/choicepopup.h"
#include "platform/launcher/historycombo.h"

#include <QAbstractItemView>
#include <QGuiApplication>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

class Box : public testing::Test
{
protected:
    Box()
    {
        combo.addItems({"5 ns", "10 ns", "30 ns", "All"}, {5, 10, 30, "all"});
        combo.resize(140, 44);
        combo.show();
        told.clear();
    }

    ChoicePopup* popup() const
    {
        for (ChoicePopup* found : combo.findChildren<ChoicePopup*>()) {
            if (found->isVisible()) {
                return found;
            }
        }
        return nullptr;
    }

    QStringList offered() const
    {
        QStringList texts;
        for (const QPushButton* button : popup()->findChildren<QPushButton*>()) {
            texts << button->text();
        }
        return texts;
    }

    void tap(int which) const
    {
        QTest::mouseClick(popup()->findChildren<QPushButton*>().at(which), Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void choose(int which)
    {
        combo.showPopup();
        tap(which);
    }

    HistoryCombo combo;
    QSignalSpy told {&combo, SIGNAL(currentDataChanged(QVariant))};
};

TEST_F(Box, HasEntriesWithTheirValues)
{
    EXPECT_EQ(combo.count(), 4);
    EXPECT_EQ(combo.currentIndex(), 0);
    EXPECT_EQ(combo.itemData(1), QVariant(10));
    EXPECT_EQ(combo.itemData(3), QVariant("all"));
    combo.addItems({"bare"}, {});
    EXPECT_FALSE(combo.itemData(4).isValid());
    EXPECT_FALSE(combo.isEditable());
    EXPECT_TRUE(HistoryCombo(nullptr, true).isEditable());
}

TEST_F(Box, SelectsByValueAsNumberOrText)
{
    combo.setCurrentIndexByData(30);
    EXPECT_EQ(combo.currentText(), "30 ns");
    combo.setCurrentIndexByData("10");
    EXPECT_EQ(combo.currentText(), "10 ns");
    combo.setCurrentIndexByData("all");
    EXPECT_EQ(combo.currentText(), "All");
    ASSERT_EQ(told.size(), 3);
    EXPECT_EQ(told[1].first(), QVariant(10));
    EXPECT_EQ(told[2].first(), QVariant("all"));
}

TEST_F(Box, StaysForAValueThatNoEntryHas)
{
    combo.setCurrentIndexByData(10);
    told.clear();
    for (const QVariant& unknown : {QVariant(11), QVariant("none"), QVariant()}) {
        combo.setCurrentIndexByData(unknown);
    }
    EXPECT_EQ(combo.currentText(), "10 ns");
    EXPECT_TRUE(told.isEmpty());
}

TEST_F(Box, ShowsAValueThatNoEntryHasAndMarksNone)
{
    combo.setCurrentIndexByData(10);
    const QImage before = combo.grab().toImage();
    combo.setCurrentIndexByData(11);
    EXPECT_EQ(combo.shownText(), "11");
    combo.setWording([](const QVariant& value) { return value.toString() + " ns"; });
    EXPECT_EQ(combo.shownText(), "11 ns");
    const QImage foreign = combo.grab().toImage();
    EXPECT_NE(foreign, before) << "the box looks as if an entry were in force";
    combo.addItem("11 ns", 12);
    combo.setCurrentIndexByData(12);
    EXPECT_EQ(foreign, combo.grab().toImage()) << "it looks as any other value";
    combo.setCurrentIndexByData(11);
    combo.showPopup();
    for (const QPushButton* button : popup()->findChildren<QPushButton*>()) {
        EXPECT_FALSE(button->isChecked()) << qPrintable(button->text());
    }
    EXPECT_NE(popup()->focusWidget(), nullptr) << "keys have nowhere to start";
}

TEST_F(Box, ShowsItsEntryAgainOnceThatIsInForce)
{
    combo.setCurrentIndexByData(11);
    combo.setCurrentIndexByData(5); // where the selection stayed
    EXPECT_EQ(combo.shownText(), "5 ns");
    combo.setCurrentIndexByData(11);
    combo.setCurrentIndex(1);
    EXPECT_EQ(combo.shownText(), "10 ns");
    combo.setCurrentIndexByData(11);
    combo.setCurrentIndexByData(QVariant()); // nothing is bound
    EXPECT_EQ(combo.shownText(), "10 ns");
}

TEST_F(Box, EntryThatWasSelectedAllTheTimeIsToldOnceWhenItIsChosen)
{
    combo.setCurrentIndexByData(11);
    told.clear();
    choose(0);
    EXPECT_EQ(combo.shownText(), "5 ns");
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told[0].first(), QVariant(5));
}

TEST_F(Box, EntryOfAListThatWasSelectedAllTheTimeIsToldOnceWhenItIsChosen)
{
    for (int i = 0; i < 300; ++i) {
        combo.addItem(QString::number(i), 1000 + i);
    }
    combo.setCurrentIndexByData(11);
    told.clear();
    combo.showPopup();
    ASSERT_TRUE(combo.view()->isVisible());
    QTest::keyClick(combo.view(), Qt::Key_Return);
    EXPECT_EQ(combo.shownText(), "5 ns");
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told[0].first(), QVariant(5));
}

TEST_F(Box, EntriesMayComeAndGoWhileItShowsAnotherValue)
{
    combo.setCurrentIndexByData(10);
    combo.setCurrentIndexByData(11);
    told.clear();
    combo.removeItem(0);
    combo.addItem("1 ns", 1);
    EXPECT_EQ(combo.shownText(), "11");
    EXPECT_TRUE(told.isEmpty());
}

TEST_F(Box, TellsValuesAndNotIndices)
{
    combo.setCurrentIndex(2);
    told.clear();
    combo.removeItem(0);
    EXPECT_EQ(combo.currentText(), "30 ns");
    EXPECT_TRUE(told.isEmpty());
    combo.removeItem(combo.currentIndex());
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told[0].first(), combo.currentData());
}

TEST_F(Box, OpensByATapAndTakesATapOnAnEntry)
{
    QTest::mouseClick(&combo, Qt::LeftButton, {}, QPoint(20, 22));
    ASSERT_NE(popup(), nullptr);
    EXPECT_EQ(offered(), QStringList({"5 ns", "10 ns", "30 ns", "All"}));
    tap(2);
    EXPECT_EQ(popup(), nullptr);
    EXPECT_EQ(combo.currentText(), "30 ns");
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told[0].first(), QVariant(30));
}

TEST_F(Box, OpensAndChoosesByKeys)
{
    combo.history = false;
    for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        combo.setCurrentIndex(0);
        QTest::keyClick(&combo, static_cast<Qt::Key>(key));
        ASSERT_NE(popup(), nullptr) << key;
        QWindow* window = popup()->windowHandle();
        QTest::keyClick(window, Qt::Key_Tab);
        // Enter chooses when it is pressed, Space when it is let go; then the pop-up's window is
        // gone.
        QTest::keyPress(window, static_cast<Qt::Key>(key));
        if (key == Qt::Key_Space) {
            QTest::keyRelease(window, Qt::Key_Space);
        }
        EXPECT_EQ(combo.currentText(), "10 ns") << key;
        EXPECT_EQ(popup(), nullptr) << key;
    }
}

TEST_F(Box, MarksTheEntryInForceAndStartsThere)
{
    combo.setCurrentIndex(2);
    QTest::mouseClick(&combo, Qt::LeftButton, {}, QPoint(20, 22));
    const auto buttons = popup()->findChildren<QPushButton*>();
    EXPECT_TRUE(buttons[2]->isChecked());
    EXPECT_FALSE(buttons[0]->isChecked());
    EXPECT_EQ(popup()->focusWidget(), buttons[2]);
    tap(2);
    EXPECT_EQ(combo.currentIndex(), 2);
    ASSERT_EQ(told.size(), 2) << "the user's choice is told even where the box showed it already";
    EXPECT_EQ(told[1].first(), QVariant(30));
}

TEST_F(Box, IsLargeEnoughForAFinger)
{
    EXPECT_GE(combo.sizeHint().height(), 44);
    EXPECT_GE(combo.minimumSizeHint().height(), 44);
    combo.showPopup();
    for (const QPushButton* button : popup()->findChildren<QPushButton*>()) {
        EXPECT_GE(button->height(), 44);
        EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text()));
    }
}

TEST_F(Box, TapBesideTheEntriesChangesNothing)
{
    combo.showPopup();
    QTest::mouseClick(popup()->windowHandle(), Qt::LeftButton, {}, QPoint(-30, -30));
    EXPECT_EQ(popup(), nullptr);
    EXPECT_EQ(combo.currentIndex(), 0);
    EXPECT_TRUE(told.isEmpty());
}

TEST_F(Box, SecondTapOnItClosesTheEntries)
{
    combo.move(100, 300);
    QTest::mouseClick(combo.windowHandle(), Qt::LeftButton, {}, QPoint(20, 22));
    ASSERT_NE(popup(), nullptr);
    QTest::mouseClick(combo.windowHandle(), Qt::LeftButton, {}, QPoint(20, 22));
    EXPECT_EQ(popup(), nullptr);
    QTest::mouseClick(combo.windowHandle(), Qt::LeftButton, {}, QPoint(20, 22));
    EXPECT_NE(popup(), nullptr);
}

TEST_F(Box, DisabledOneDoesNotOpen)
{
    combo.setEnabled(false);
    QTest::mouseClick(&combo, Qt::LeftButton, {}, QPoint(20, 22));
    EXPECT_EQ(popup(), nullptr);
}

TEST_F(Box, ClosesItsEntriesWhenToldTo)
{
    combo.showPopup();
    combo.hidePopup();
    EXPECT_EQ(popup(), nullptr);
    combo.showPopup();
    EXPECT_NE(popup(), nullptr);
}

TEST_F(Box, MayGoWhileItIsOpen)
{
    auto other = std::make_unique<HistoryCombo>();
    other->addItems({"a", "b"}, {1, 2});
    other->show();
    other->showPopup();
    other->showPopup(); // the first one is closed and not yet gone
    other.reset();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(Box, OffersWhatIsChosenMostFirst)
{
    combo.historyCount = 1;
    choose(2);
    choose(0); // by now the third entry leads
    choose(1);
    combo.showPopup();
    EXPECT_EQ(offered(), QStringList({"30 ns", "5 ns", "10 ns", "All"}));
    EXPECT_EQ(combo.itemText(0), "5 ns") << "the indices stay";
}

TEST_F(Box, OffersTheEntriesAsTheyStandWithoutHistory)
{
    combo.history = false;
    combo.historyCount = 1;
    choose(2);
    choose(2);
    combo.showPopup();
    EXPECT_EQ(offered(), QStringList({"5 ns", "10 ns", "30 ns", "All"}));
}

TEST_F(Box, ProgramsChoiceIsNoUse)
{
    combo.historyCount = 1;
    combo.setCurrentIndexByData(30);
    combo.setCurrentIndexByData(5);
    combo.showPopup();
    EXPECT_EQ(offered().first(), "5 ns");
}

TEST_F(Box, ScrollsWhatDoesNotFitTheScreen)
{
    for (int i = 0; i < 300; ++i) {
        combo.addItem(QString::number(i), 1000 + i);
    }
    combo.showPopup();
    EXPECT_EQ(popup(), nullptr);
    EXPECT_TRUE(combo.view()->isVisible());
    combo.hidePopup();
    EXPECT_FALSE(combo.view()->isVisible());
}

TEST(HistoryCombo, EmptyOneHasNothingToOpen)
{
    HistoryCombo combo;
    combo.show();
    combo.showPopup();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

} // namespace
