// Whether fingers hit and keys reach everything in the window, and whether longer words fit.

#include "platform/launcher/choicepopup.h"
#include "platform/launcher/historycombo.h"
#include "platform/launcher/launcherstyle.h"
#include "platform/launcher/wrappanel.h"
#include "refls/reflstableview.h"
#include "refls/refltablemenu.h"
#include "tests/platform/launcher/look.h"
#include "tests/support/reach.h"
#include "tests/window/screen.h"

#include <QFontInfo>

namespace {

using namespace testing_support;

/// The window in a light, with a trace that is zoomed: all that lies over the chart is shown.
class Reach : public Screen
{
protected:
    Reach() { load("a.sor"); }

    static QStringList names() { return {"Measurement", "Events", "Reflectograms", "Settings"}; }

    QPushButton* toggle(const QString& text) const
    {
        const auto buttons = window->findChild<WrapPanel*>()->findChildren<QPushButton*>();
        for (QPushButton* button : buttons) {
            if (button->text() == text) {
                return button;
            }
        }
        return nullptr;
    }

    void show(const QString& name) const
    {
        QPushButton* button = toggle(name);
        if (button != nullptr && !button->isChecked()) {
            QTest::mouseClick(button, Qt::LeftButton);
        }
        QCoreApplication::processEvents();
    }

    void zoomIn() const
    {
        QTest::mouseClick(window->findChild<QPushButton*>("zoomInButton"), Qt::LeftButton);
        QCoreApplication::processEvents();
    }

    /// What a check finds wrong in any of the states that the window can be in.
    QStringList inEveryState(QStringList (*check)(QWidget&)) const
    {
        QStringList found = check(*window);
        for (const QString& name : names()) {
            show(name);
            found << check(*window);
        }
        zoomIn();
        found << check(*window);
        found.removeDuplicates();
        return found;
    }

    const LookIn look {PaletteFactory::Light::Day};
};

TEST_F(Reach, FingersHitEveryButtonOfTheWindow)
{
    EXPECT_EQ(inEveryState([](QWidget& widget) { return smallTargets(widget); }), QStringList());
}

TEST_F(Reach, TabComesByEverythingInTheWindow)
{
    EXPECT_EQ(inEveryState(&unreachable), QStringList());
}

TEST_F(Reach, SpaceAndEnterPressEveryButtonOfTheWindow)
{
    EXPECT_EQ(inEveryState(&deafToKeys), QStringList());
}

TEST_F(Reach, TabComesBySoManyThatNoneWasOverlooked)
{
    show("Settings");
    zoomIn();
    int buttons = 0;
    int boxes = 0;
    for (const QWidget* widget : tabChain(*window)) {
        buttons += widget->inherits("QAbstractButton") ? 1 : 0;
        boxes += widget->inherits("QComboBox") ? 1 : 0;
    }
    EXPECT_EQ(boxes, 4);
    EXPECT_GE(buttons, 4 + 1 + 3) << "panels, action, zoom";
}

TEST_F(Reach, KeysChooseInEveryBoxAndFingersHitItsEntries)
{
    show("Settings");
    const auto boxes = window->findChildren<HistoryCombo*>();
    ASSERT_EQ(boxes.size(), 4);
    for (HistoryCombo* box : boxes) {
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            box->setFocus(Qt::TabFocusReason);
            const int before = box->currentIndex();
            QTest::keyClick(box, key);
            auto* popup = qobject_cast<ChoicePopup*>(QApplication::activePopupWidget());
            ASSERT_NE(popup, nullptr) << key;
            EXPECT_EQ(smallTargets(*popup), QStringList());
            EXPECT_EQ(clippedTexts(*popup), QStringList());
            EXPECT_EQ(unreachable(*popup), QStringList());
            popup->findChildren<QPushButton*>().at(before == 0 ? 1 : 0)->setFocus();
            QTest::keyClick(popup->focusWidget(), key);
            EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
            EXPECT_NE(box->currentIndex(), before) << key;
        }
    }
}

TEST_F(Reach, MenuOfATraceIsForFingersAndKeys)
{
    load("b.sor");
    show("Reflectograms");
    auto* table = window->findChild<Waveform::ReflsTableView*>();
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, QPoint(20, 20));
    auto* menu = qobject_cast<ReflTableMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(smallTargets(*menu), QStringList());
    EXPECT_EQ(unreachable(*menu), QStringList());
    EXPECT_EQ(deafToKeys(*menu), QStringList());
    EXPECT_EQ(clippedTexts(*menu), QStringList());
    menu->close();
}

/// Longer words in another font, before the window is built.
class Wording : public testing::WithParamInterface<const char*>
{
protected:
    Wording() { QApplication::setFont(QFont(GetParam(), QApplication::font().pointSize())); }

    static bool hasFont() { return QFontInfo(QApplication::font()).family() == GetParam(); }

private:
    const LookKept before;
    const LookIn look {PaletteFactory::Light::Day};
    const LongerTexts longer;
};

class LongWords : public Wording, public Screen
{
};

TEST_P(LongWords, FitOnTheInstrument)
{
    if (!hasFont()) {
        GTEST_SKIP() << GetParam() << " is not installed";
    }
    load("a.sor");
    QStringList clipped = clippedTexts(*window);
    for (QPushButton* button : window->findChild<WrapPanel*>()->findChildren<QPushButton*>()) {
        if (!button->isChecked()) {
            QTest::mouseClick(button, Qt::LeftButton);
        }
        QCoreApplication::processEvents();
        clipped << clippedTexts(*window);
    }
    clipped.removeDuplicates();
    EXPECT_EQ(window->size(), QSize(800, 480)) << "it grew beyond the screen";
    for (const QWidget* part :
         window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        EXPECT_TRUE(part->isWindow() || part->minimumSizeHint().width() <= 800)
            << qPrintable(nameOf(*part));
    }
    EXPECT_EQ(clipped.join('\n').toStdString(), "");
}

INSTANTIATE_TEST_SUITE_P(Fonts, LongWords,
                         testing::Values("Liberation Sans", "DejaVu Sans", "Noto Sans"));

} // namespace
