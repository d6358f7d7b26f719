#include "platform/launcher/choicepopup.h"
#include "platform/launcher/historycombo.h"
#include "platform/launcher/launcherstyle.h"
#include "platform/launcher/touchbutton.h"
#include "tests/platform/launcher/look.h"
#include "tests/support/contrast.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QProxyStyle>
#include <QStandardItemModel>
#include <QTableView>
#include <QToolButton>
#include <QTreeView>
#include <QtTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

using namespace testing_support;
using Light = PaletteFactory::Light;

/// Takes a colour while it is being built, as a chart does for its canvas.
class Paper : public QWidget
{
public:
    explicit Paper(QWidget* parent, const char* id = "chart")
        : QWidget(parent)
    {
        setProperty("palette_id", id);
        taken = palette().color(QPalette::Window);
    }

    QColor taken;
};

TEST(LauncherStyle, GivesAWidgetThePaletteThatItNamesAtOnce)
{
    const LookIn night(Light::Night);
    QWidget page;
    const Paper paper(&page);
    EXPECT_EQ(paper.taken, QColor(Qt::white));
    EXPECT_TRUE(paper.autoFillBackground()) << "the dark page would show through";
    EXPECT_NE(page.palette().color(QPalette::Window), QColor(Qt::white));
}

TEST(LauncherStyle, ChildrenTakeThePaletteOfWhatTheyLieOn)
{
    const LookIn night(Light::Night);
    QWidget page;
    Paper paper(&page);
    const QPushButton onPaper(&paper);
    const QPushButton onPage(&page);
    const auto button = [](Light light) {
        return PaletteFactory::getPalette("Application", light).color(QPalette::Button);
    };
    EXPECT_EQ(onPaper.palette().color(QPalette::Button), button(Light::Day));
    EXPECT_EQ(onPage.palette().color(QPalette::Button), button(Light::Night));
}

TEST(LauncherStyle, DialogsHaveAnEdgeThatIsSeenByDayAndByNight)
{
    for (const Light light : {Light::Day, Light::Night}) {
        const LookIn look(light);
        QDialog dialog;
        dialog.resize(200, 100);
        dialog.show();
        const QImage picture = dialog.grab().toImage();
        const QColor ground = picture.pixelColor(100, 50);
        for (const QPoint edge :
             {QPoint(0, 50), QPoint(199, 50), QPoint(100, 0), QPoint(100, 99)}) {
            EXPECT_GE(contrast(picture.pixelColor(edge), ground), 3.0)
                << edge.x() << " " << edge.y();
        }
    }
}

TEST(LauncherStyle, WindowsThatAreNoDialogsHaveNoEdge)
{
    const LookIn look(Light::Day);
    QWidget window;
    window.resize(200, 100);
    window.show();
    const QImage picture = window.grab().toImage();
    EXPECT_EQ(picture.pixelColor(0, 50), picture.pixelColor(100, 50));
}

/// As on a desktop that wants signs beside the words of a dialog's buttons.
class StyleOfSigns : public QProxyStyle
{
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* more) const override
    {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons
            ? 1
            : QProxyStyle::styleHint(hint, option, widget, more);
    }
};

TEST(LauncherStyle, ButtonsOfAQuestionHaveNoSignsBesideTheirWords)
{
    LauncherStyle style;
    style.setBaseStyle(new StyleOfSigns);
    QDialogButtonBox answers;
    answers.setStyle(&style);
    const auto* yes = answers.addButton(QDialogButtonBox::Yes);
    const auto* no = answers.addButton(QDialogButtonBox::No);
    EXPECT_TRUE(yes->icon().isNull() && no->icon().isNull());
}

TEST(LauncherStyle, GivesThePaletteToAWidgetThatNamedItBefore)
{
    QWidget page;
    const Paper paper(&page);
    ASSERT_NE(paper.taken, QColor(Qt::white));
    const LookIn night(Light::Night);
    page.show();
    EXPECT_EQ(paper.palette().color(QPalette::Window), QColor(Qt::white));
}

TEST(LauncherStyle, NamedPaletteFollowsTheLight)
{
    const LookIn day(Light::Day);
    QWidget page;
    const Paper paper(&page, "GenericWindow");
    page.show();
    auto* style = qobject_cast<LauncherStyle*>(QApplication::style());
    ASSERT_NE(style, nullptr);
    style->setLight(Light::Night);
    EXPECT_EQ(paper.palette().color(QPalette::Window),
              PaletteFactory::getPalette("GenericWindow", Light::Night).color(QPalette::Window));
}

TEST(LauncherStyle, MakesWhateverIsPressedLargeEnoughForAFinger)
{
    const LookIn day(Light::Day);
    const QPushButton button("x");
    const QToolButton tool;
    const QCheckBox check("x");
    const QComboBox box;
    const QLineEdit line;
    for (const QWidget* widget :
         std::initializer_list<const QWidget*> {&button, &tool, &check, &box, &line}) {
        EXPECT_GE(widget->sizeHint().height(), 44) << widget->metaObject()->className();
        EXPECT_GE(widget->sizeHint().width(), 44) << widget->metaObject()->className();
    }
}

/// A page with one of each kind of control, in a light.
class FocusIn : public testing::TestWithParam<Light>
{
protected:
    FocusIn()
        : look(GetParam())
        , column(&page)
    {
        add(new TouchButton("press"));
        add(new TouchButton("checked"));
        widgets.last()->setProperty("checkable", true);
        widgets.last()->setProperty("checked", true);
        auto* box = new HistoryCombo;
        box->addItem("entry");
        add(box);
        add(new QLineEdit("text"));
        page.show();
        QApplication::setActiveWindow(&page);
    }

    void add(QWidget* widget)
    {
        column.addWidget(widget);
        widgets << widget;
    }

    /// How many pixels a control has with a contrast of 3 at least to those of another picture.
    static int differing(const QImage& with, const QImage& without)
    {
        int count = 0;
        for (int y = 0; y < with.height(); ++y) {
            for (int x = 0; x < with.width(); ++x) {
                count += contrast(with.pixelColor(x, y), without.pixelColor(x, y)) >= 3.0 ? 1 : 0;
            }
        }
        return count;
    }

    const LookIn look;
    QWidget page;
    QVBoxLayout column;
    QList<QWidget*> widgets;
};

TEST_P(FocusIn, IsSeenWhereTabBroughtIt)
{
    for (QWidget* widget : widgets) {
        page.setAttribute(Qt::WA_KeyboardFocusChange, false);
        page.setFocus();
        widget->clearFocus();
        const QImage without = widget->grab().toImage();
        QTest::keyClick(&page, Qt::Key_Tab);
        widget->setFocus(Qt::TabFocusReason);
        const QImage with = widget->grab().toImage();
        // Half of what a frame two pixels wide has.
        EXPECT_GE(differing(with, without), 2 * (widget->width() + widget->height()) / 1)
            << widget->metaObject()->className();
    }
}

TEST_P(FocusIn, IsNotShownToAFinger)
{
    QTest::keyClick(&page, Qt::Key_Tab);
    EXPECT_TRUE(page.testAttribute(Qt::WA_KeyboardFocusChange));
    QTest::mouseClick(widgets.first(), Qt::LeftButton);
    EXPECT_FALSE(page.testAttribute(Qt::WA_KeyboardFocusChange));
}

TEST_P(FocusIn, IsShownInAPopUpThatAKeyOpened)
{
    auto* box = qobject_cast<HistoryCombo*>(widgets.at(2));
    box->setFocus(Qt::TabFocusReason);
    QTest::keyClick(box, Qt::Key_Space);
    QWidget* popup = QApplication::activePopupWidget();
    ASSERT_NE(popup, nullptr);
    EXPECT_TRUE(popup->testAttribute(Qt::WA_KeyboardFocusChange));
    popup->close();
    QTest::mouseClick(box, Qt::LeftButton);
    popup = QApplication::activePopupWidget();
    ASSERT_NE(popup, nullptr);
    EXPECT_FALSE(popup->testAttribute(Qt::WA_KeyboardFocusChange));
    popup->close();
}

TEST_P(FocusIn, IsShownOnARowToKeysAndNotToAFinger)
{
    QStandardItemModel model(4, 2);
    QTableView rows;
    rows.setModel(&model);
    rows.setSelectionBehavior(QAbstractItemView::SelectRows);
    rows.show();
    QApplication::setActiveWindow(&rows);
    const auto picture = [&] { return rows.viewport()->grab().toImage(); };
    const auto hasFrame = [&] {
        const QImage with = picture();
        const QModelIndex current = rows.currentIndex();
        rows.selectionModel()->setCurrentIndex({}, QItemSelectionModel::NoUpdate);
        const QImage without = picture();
        rows.selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
        return with != without;
    };
    const auto tap = [&](int row) {
        QTest::mouseClick(rows.viewport(), Qt::LeftButton, {},
                          rows.visualRect(model.index(row, 0)).center());
    };
    tap(1);
    ASSERT_TRUE(rows.hasFocus() && rows.selectionModel()->isRowSelected(1, {}));
    EXPECT_FALSE(hasFrame()) << "of a cell, where a row is chosen";
    QTest::keyClick(&rows, Qt::Key_Down);
    EXPECT_TRUE(hasFrame());
    tap(0);
    EXPECT_FALSE(hasFrame());
}

TEST_P(FocusIn, OfATreeIsShownInsideItsRowToKeysAndNotToAFinger)
{
    QStandardItemModel model(4, 2);
    QTreeView rows;
    rows.setModel(&model);
    rows.setRootIsDecorated(false);
    rows.setAllColumnsShowFocus(true);
    rows.setSelectionMode(QAbstractItemView::NoSelection);
    rows.show();
    QApplication::setActiveWindow(&rows);
    rows.setFocus();
    const auto picture = [&] { return rows.viewport()->grab().toImage(); };
    const QImage without = picture();
    const auto placeOf = [&](int row) {
        const QRect first = rows.visualRect(model.index(row, 0));
        return first.united(rows.visualRect(model.index(row, 1)));
    };
    QTest::mouseClick(rows.viewport(), Qt::LeftButton, {}, placeOf(0).center());
    ASSERT_TRUE(rows.hasFocus() && rows.currentIndex().row() == 0);
    EXPECT_EQ(picture(), without);
    QTest::keyClick(&rows, Qt::Key_Down);
    ASSERT_EQ(rows.currentIndex().row(), 1);
    const QImage with = picture();
    EXPECT_NE(with.copy(placeOf(1)), without.copy(placeOf(1)));
    for (const int row : {0, 2}) { // which are not drawn anew when the frame goes on
        EXPECT_EQ(with.copy(placeOf(row)), without.copy(placeOf(row))) << row;
    }
}

INSTANTIATE_TEST_SUITE_P(Lights, FocusIn, testing::Values(Light::Day, Light::Night));

} // namespace
