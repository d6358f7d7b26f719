#include "platform/launcher/wrappanel.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/platform/launcher/wrapbutton.h"

#include <QGridLayout>
#include <QPushButton>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

using testing_support::buttonOf;
using testing_support::ConfigHome;

/// A page as the window makes it: two parts that share a cell, and two with rows of their own.
class Page
{
public:
    explicit Page(bool exclusive = true, bool remember = true)
        : panel(new WrapPanel(exclusive))
    {
        for (QWidget* part : {bar, events, traces}) {
            part->hide();
        }
        grid->addWidget(traces, 2, 0, 1, -1);
        grid->addWidget(events, 3, 0, 1, -1);
        grid->addWidget(bottom, 4, 0, 1, -1);
        grid->addWidget(bar, 4, 0, 1, -1);
        for (QWidget* part : {bar, events, traces, bottom}) {
            panel->attach(part, remember);
        }
        grid->addWidget(panel, 5, 0, 1, -1);
        widget.resize(800, 480);
        widget.show();
    }

    void press(QWidget* part) const { QTest::mouseClick(buttonOf(*panel, part), Qt::LeftButton); }

    /// The names of the parts in sight; checks that the buttons say the same.
    QStringList shown() const
    {
        QStringList names;
        for (QWidget* part : {bar, events, traces, bottom}) {
            if (part->isVisible()) {
                names << part->objectName();
            }
            EXPECT_EQ(buttonOf(*panel, part)->isChecked(), part->isVisible())
                << qPrintable(part->objectName());
        }
        return names;
    }

    /// What stands on the buttons, from left to right.
    QStringList titles() const
    {
        QStringList all;
        for (const QPushButton* button : panel->findChildren<QPushButton*>()) {
            all << button->text();
        }
        return all;
    }

    QWidget widget;
    QGridLayout* grid = new QGridLayout(&widget);
    QWidget* bar = part("bar");
    QWidget* events = part("events");
    QWidget* traces = part("traces");
    QWidget* bottom = part("bottom");
    WrapPanel* panel;

private:
    QWidget* part(const QString& name)
    {
        auto* made = new QWidget(&widget);
        made->setObjectName(name);
        made->setWindowTitle(name.toUpper());
        return made;
    }
};

class Wrapped : public testing::Test
{
protected:
    const ConfigHome home;
};

TEST_F(Wrapped, NamesItsButtonsByTheTitlesOfTheParts)
{
    Page page;
    EXPECT_EQ(page.titles(), QStringList({"BAR", "EVENTS", "TRACES", "BOTTOM"}));
    page.events->setWindowTitle("Ereignisse");
    EXPECT_EQ(page.titles(), QStringList({"BAR", "Ereignisse", "TRACES", "BOTTOM"}));
    page.events->setWindowTitle(QString());
    EXPECT_EQ(page.titles(), QStringList({"BAR", "events", "TRACES", "BOTTOM"}));
}

TEST_F(Wrapped, LeavesThePartsAsTheyAreAtFirst)
{
    const Page page;
    EXPECT_EQ(page.shown(), QStringList({"bottom"}));
}

TEST_F(Wrapped, ButtonShowsAndHidesItsPart)
{
    const Page page;
    page.press(page.events);
    page.press(page.traces);
    EXPECT_EQ(page.shown(), QStringList({"events", "traces", "bottom"}));
    page.press(page.events);
    EXPECT_EQ(page.shown(), QStringList({"traces", "bottom"}));
    page.press(page.bottom);
    EXPECT_EQ(page.shown(), QStringList({"traces"}));
}

TEST_F(Wrapped, PartsInOneCellTakeTurns)
{
    const Page page;
    page.press(page.events);
    page.press(page.bar);
    EXPECT_EQ(page.shown(), QStringList({"bar", "events"}));
    page.press(page.bottom);
    EXPECT_EQ(page.shown(), QStringList({"events", "bottom"}));
    page.press(page.bar);
    page.press(page.bar);
    EXPECT_EQ(page.shown(), QStringList({"events"}));
}

TEST_F(Wrapped, PartsAreIndependentWhereTheyAreNotToTakeTurns)
{
    const Page page(false);
    page.press(page.bar);
    EXPECT_EQ(page.shown(), QStringList({"bar", "bottom"}));
}

TEST_F(Wrapped, FollowsPartsThatOthersShowAndHide)
{
    const Page page;
    page.events->show();
    page.bar->show();
    EXPECT_EQ(page.shown(), QStringList({"bar", "events"}));
    page.events->hide();
    EXPECT_EQ(page.shown(), QStringList({"bar"}));
}

TEST_F(Wrapped, HeldPartIsShownAndStays)
{
    const Page page;
    page.press(page.bottom);
    page.panel->setHeld(page.bottom, true);
    EXPECT_EQ(page.shown(), QStringList({"bottom"}));
    page.press(page.bottom);
    EXPECT_EQ(page.shown(), QStringList({"bottom"}));
    page.panel->setHeld(page.bottom, false);
    page.press(page.bottom);
    EXPECT_EQ(page.shown(), QStringList());
}

TEST_F(Wrapped, HeldPartIsOnePressAwayBehindAnother)
{
    const Page page;
    page.panel->setHeld(page.bottom, true);
    page.press(page.bar);
    EXPECT_EQ(page.shown(), QStringList({"bar"}));
    page.press(page.bottom);
    EXPECT_EQ(page.shown(), QStringList({"bottom"}));
    page.press(page.bar);
    page.press(page.bar);
    EXPECT_EQ(page.shown(), QStringList({"bottom"})) << "its place was emptied";
    page.panel->setHeld(page.bottom, false);
    page.press(page.bar);
    page.press(page.bar);
    EXPECT_EQ(page.shown(), QStringList());
}

TEST_F(Wrapped, NextStartFindsThePartsAsTheUserLeftThem)
{
    {
        const Page page;
        page.press(page.traces);
        page.press(page.bar);
    }
    const Page next;
    EXPECT_EQ(next.shown(), QStringList({"bar", "traces"}));
}

TEST_F(Wrapped, WhatTheProgramShowsIsNotRemembered)
{
    {
        const Page page;
        page.panel->setShown(page.bar, true);
        page.panel->setShown(page.events, true);
        EXPECT_EQ(page.shown(), QStringList({"bar", "events"}));
    }
    const Page next;
    EXPECT_EQ(next.shown(), QStringList({"bottom"}));
}

TEST_F(Wrapped, PartsThatAreNotRememberedStartAsTheyAre)
{
    {
        const Page page(true, false);
        page.press(page.bar);
        page.press(page.events);
    }
    const Page next(true, false);
    EXPECT_EQ(next.shown(), QStringList({"bottom"}));
}

TEST_F(Wrapped, MemoryThatContradictsItselfShowsOneOfACell)
{
    ZuConfig("zu-launcher", "panels", "bar").store(true);
    ZuConfig("zu-launcher", "panels", "bottom").store(true);
    ZuConfig("zu-launcher", "panels", "events").store("garbage");
    const Page page;
    EXPECT_THAT(page.shown(), testing::Contains(QString("bottom")));
    EXPECT_THAT(page.shown(), testing::Not(testing::Contains(QString("bar"))));
}

TEST_F(Wrapped, WorksByKeys)
{
    const Page page;
    for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        const bool before = page.events->isVisible();
        QTest::keyClick(buttonOf(*page.panel, page.events), static_cast<Qt::Key>(key));
        EXPECT_NE(page.events->isVisible(), before) << key;
    }
    buttonOf(*page.panel, page.bar)->setFocus();
    QTest::keyClick(buttonOf(*page.panel, page.bar), Qt::Key_Tab);
    EXPECT_EQ(page.widget.focusWidget(), buttonOf(*page.panel, page.events));
}

TEST_F(Wrapped, ButtonsAreLargeEnoughAndInSight)
{
    const Page page;
    for (QWidget* part : {page.bar, page.events, page.traces, page.bottom}) {
        const QPushButton* button = buttonOf(*page.panel, part);
        EXPECT_GE(button->height(), 44);
        EXPECT_GE(button->width(), button->sizeHint().width());
        EXPECT_TRUE(page.panel->rect().contains(button->geometry()));
    }
}

TEST_F(Wrapped, PartThatGoesTakesItsButtonAlong)
{
    const Page page;
    EXPECT_EQ(page.panel->findChildren<QPushButton*>().size(), 4);
    delete page.events;
    EXPECT_EQ(page.panel->findChildren<QPushButton*>().size(), 3);
    page.press(page.bar);
    EXPECT_TRUE(page.bar->isVisible());
    EXPECT_FALSE(page.bottom->isVisible());
}

TEST_F(Wrapped, AttachesEachPartOnceAndNothingForNone)
{
    Page page;
    page.panel->attach(page.bar, true);
    page.panel->attach(nullptr, true);
    page.panel->setShown(nullptr, true);
    page.panel->setHeld(&page.widget, true);
    EXPECT_EQ(page.panel->findChildren<QPushButton*>().size(), 4);
}

} // namespace
