#include "platform/launcher/filedialog.h"
#include "platform/launcher/filesmodel.h"
#include "platform/launcher/opendialog.h"

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTextDocument>
#include <QTimer>
#include <QTreeView>

#include <gtest/gtest.h>

namespace {

/// The dialog as a person sees it.
class Picker
{
public:
    explicit Picker(OpenDialog* dialog)
        : dialog(dialog)
        , list(dialog->findChild<QTreeView*>())
    {
    }

    [[nodiscard]] QPushButton* button(const QString& text) const
    {
        for (QPushButton* one : dialog->findChildren<QPushButton*>()) {
            if (one->text() == text) {
                return one;
            }
        }
        ADD_FAILURE() << "no button " << text.toStdString();
        return nullptr;
    }

    void press(const QString& text) const { QTest::mouseClick(button(text), Qt::LeftButton); }

    [[nodiscard]] QStringList names() const
    {
        QStringList names;
        for (int row = 0; row < list->model()->rowCount(); ++row) {
            names << list->model()->index(row, 0).data().toString();
        }
        return names;
    }

    [[nodiscard]] QPoint placeOf(const QString& name, int column) const
    {
        const QModelIndex index = list->model()->index(names().indexOf(name), column);
        EXPECT_TRUE(index.isValid()) << name.toStdString();
        return list->visualRect(index).center();
    }

    void touch(const QString& name, int column = 0) const
    {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, placeOf(name, column));
    }

    [[nodiscard]] QString left() const { return dialog->findChild<QLabel*>("left")->text(); }

    OpenDialog* dialog;
    QTreeView* list;
};

template <typename Deed>
void onPicker(Deed deed)
{
    QTimer::singleShot(0, qApp, [deed] {
        auto* dialog = qobject_cast<OpenDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        deed(Picker(dialog));
        if (QApplication::activeModalWidget() == dialog) {
            dialog->reject(); // otherwise a failure would hang
        }
    });
}

class Choosing : public testing::Test
{
protected:
    QString make(const QString& name) const
    {
        QString path = dir.filePath(name);
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        EXPECT_TRUE(QFile(path).open(QIODevice::WriteOnly));
        return path;
    }

    QStringList choose(int atMost = 3) const
    {
        return FileDialog::getOpenFileNames(
            nullptr,
            {"Open",
             {{"Storage", dir.path()}, {"Flash drive", dir.filePath("stick")}},
             ".sor",
             atMost});
    }

    QString chooseOne(const QString& filter = ".sor") const
    {
        return FileDialog::getOpenFileName(nullptr, "Open", dir.path(), filter);
    }

    const QTemporaryDir dir;
};

TEST_F(Choosing, AnswersTheFileThatWasTouched)
{
    const QString file = make("link.sor");
    make("link.html");
    onPicker([](const Picker& picker) {
        EXPECT_EQ(picker.dialog->windowTitle(), "Open");
        EXPECT_EQ(picker.names(), QStringList {"link.sor"});
        EXPECT_FALSE(picker.button("Load")->isEnabled());
        picker.touch("link.sor");
        EXPECT_EQ(picker.left(), "May still be loaded: 0");
        picker.press("Load");
    });
    EXPECT_EQ(chooseOne(), file);
}

TEST_F(Choosing, TakesAFilterInBrackets)
{
    make("link.txt");
    make("a.SOR");
    onPicker([](const Picker& picker) { EXPECT_EQ(picker.names(), QStringList {"a.SOR"}); });
    EXPECT_EQ(chooseOne("Traces (*.sor *.trc)"), "");
}

TEST_F(Choosing, AnswersNothingWhenCancelled)
{
    make("link.sor");
    onPicker([](const Picker& picker) {
        picker.touch("link.sor");
        picker.press("Cancel");
    });
    EXPECT_EQ(chooseOne(), "");
    onPicker([](const Picker& picker) {
        picker.touch("link.sor");
        QTest::keyClick(picker.dialog, Qt::Key_Escape);
    });
    EXPECT_EQ(chooseOne(), "");
}

TEST_F(Choosing, TellsHowManyMayStillBeLoadedAndTakesNoMore)
{
    const QString a = make("a.sor");
    const QString b = make("b.sor");
    make("c.sor");
    onPicker([](const Picker& picker) {
        EXPECT_EQ(picker.left(), "May still be loaded: 2");
        picker.touch("b.sor", FilesModel::Size); // anywhere in the row
        EXPECT_EQ(picker.left(), "May still be loaded: 1");
        picker.touch("a.sor", FilesModel::Date);
        picker.touch("c.sor");
        EXPECT_EQ(picker.left(), "May still be loaded: 0");
        picker.press("Load");
    });
    EXPECT_EQ(choose(2), (QStringList {b, a}));
}

TEST_F(Choosing, SecondTouchTakesAFileBack)
{
    make("a.sor");
    onPicker([](const Picker& picker) {
        picker.touch("a.sor");
        EXPECT_TRUE(picker.button("Load")->isEnabled());
        picker.touch("a.sor");
        EXPECT_FALSE(picker.button("Load")->isEnabled());
        EXPECT_EQ(picker.left(), "May still be loaded: 3");
    });
    EXPECT_TRUE(choose().isEmpty());
}

TEST_F(Choosing, ShowsTheFlashDriveAsWell)
{
    const QString a = make("a.sor");
    const QString b = make("stick/b.sor");
    onPicker([](const Picker& picker) {
        picker.touch("a.sor");
        EXPECT_TRUE(picker.button("Storage")->isChecked());
        picker.press("Flash drive");
        EXPECT_FALSE(picker.button("Storage")->isChecked());
        EXPECT_EQ(picker.names(), QStringList {"b.sor"});
        picker.touch("b.sor");
        picker.press("Load");
    });
    EXPECT_EQ(choose(), (QStringList {a, b}));
}

TEST_F(Choosing, NamesOfAForeignDriveAreTextAndNothingElse)
{
    const QString file = make("R&D <b>x/<i>y.sor");
    const QString place = QFileInfo(file).path();
    onPicker([&](const Picker& picker) {
        const QPushButton* button = picker.button("R&&D <b>x");
        ASSERT_NE(button, nullptr);
        const auto shown = [](const QString& toolTip) {
            QTextDocument text;
            text.setHtml(toolTip);
            return text.toPlainText().replace(QChar::Nbsp, ' ');
        };
        EXPECT_EQ(shown(button->toolTip()), place);
        EXPECT_EQ(shown(picker.list->model()->index(0, 0).data(Qt::ToolTipRole).toString()), file);
        EXPECT_EQ(picker.names(), QStringList("<i>y.sor"));
    });
    FileDialog::getOpenFileName(nullptr, "Open", place, ".sor");
}

TEST_F(Choosing, SaysThatThereIsNothing)
{
    onPicker([](const Picker& picker) {
        auto* label = picker.list->findChild<QLabel*>();
        ASSERT_NE(label, nullptr);
        EXPECT_TRUE(label->isVisible());
        EXPECT_EQ(label->text(), "There are no files here.");
        EXPECT_FALSE(picker.button("Load")->isEnabled());
        QTest::keyClick(picker.list, Qt::Key_Return);
        EXPECT_TRUE(picker.dialog->isVisible());
    });
    EXPECT_TRUE(choose().isEmpty());
}

TEST_F(Choosing, GoesElsewhereOnTheDesktop)
{
    const QString c = make("elsewhere/c.sor");
    onPicker([this](const Picker& picker) {
        QTimer::singleShot(0, qApp, [this] {
            auto* chooser = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(chooser, nullptr);
            EXPECT_EQ(chooser->directory().path(), dir.path());
            chooser->setDirectory(dir.filePath("elsewhere"));
            QMetaObject::invokeMethod(chooser, "accept");
        });
        picker.press("Other...");
        EXPECT_TRUE(picker.button("elsewhere")->isChecked());
        picker.touch("c.sor");
        picker.press("Load");
    });
    EXPECT_EQ(choose(), QStringList {c});
}

TEST_F(Choosing, DoubleClickLoadsAtOnce)
{
    const QString a = make("a.sor");
    onPicker([](const Picker& picker) {
        picker.touch("a.sor");
        QTest::mouseDClick(picker.list->viewport(), Qt::LeftButton, {}, picker.placeOf("a.sor", 0));
        EXPECT_FALSE(picker.dialog->isVisible());
    });
    EXPECT_EQ(choose(), QStringList {a});
}

TEST_F(Choosing, WorksByKeysAlone)
{
    make("a.sor");
    const QString b = make("b.sor");
    onPicker([](const Picker& picker) {
        EXPECT_EQ(picker.dialog->focusWidget(), picker.list);
        const int row = picker.names().indexOf("b.sor");
        picker.list->setCurrentIndex(picker.list->model()->index(row, 0));
        QTest::keyClick(picker.list, Qt::Key_Space);
        EXPECT_EQ(picker.left(), "May still be loaded: 2");
        QTest::keyClick(picker.list, Qt::Key_Return);
        EXPECT_FALSE(picker.dialog->isVisible());
    });
    EXPECT_EQ(choose(), QStringList {b});
}

TEST_F(Choosing, EnterLoadsTheRowWhereNoneIsChecked)
{
    const QString a = make("a.sor");
    onPicker([](const Picker& picker) { QTest::keyClick(picker.list, Qt::Key_Return); });
    EXPECT_EQ(choose(), QStringList {a});
}

TEST_F(Choosing, IsForFingersAndFitsTheInstrument)
{
    make("a.sor");
    onPicker([](const Picker& picker) {
        EXPECT_LE(picker.dialog->width(), 800);
        EXPECT_LE(picker.dialog->height(), 480);
        EXPECT_GE(picker.list->visualRect(picker.list->model()->index(0, 0)).height(), 44);
        for (const auto* button : picker.dialog->findChildren<QPushButton*>()) {
            EXPECT_GE(button->height(), 44) << button->text().toStdString();
        }
    });
    EXPECT_TRUE(choose().isEmpty());
}

TEST_F(Choosing, DragScrollsTheListAndChecksNothing)
{
    for (int i = 0; i < 40; ++i) {
        make(QString("%1.sor").arg(i));
    }
    onPicker([](const Picker& picker) {
        QWidget* rows = picker.list->viewport();
        const int x = rows->width() / 2;
        int y = rows->height() - 10;
        QTest::mousePress(rows, Qt::LeftButton, {}, {x, y});
        while (y > 20) {
            y -= 10;
            QMouseEvent move(QEvent::MouseMove, QPoint(x, y), rows->mapToGlobal(QPoint(x, y)),
                             Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(rows, &move);
            QTest::qWait(5);
        }
        QTest::mouseRelease(rows, Qt::LeftButton, {}, {x, y});
        EXPECT_TRUE(QTest::qWaitFor([&] { return picker.list->verticalScrollBar()->value() > 0; }));
        EXPECT_EQ(picker.left(), "May still be loaded: 3");
    });
    EXPECT_TRUE(choose().isEmpty());
}

TEST_F(Choosing, StandsAParentThatGoesMeanwhile)
{
    auto* frame = new QWidget;
    QTimer::singleShot(0, qApp, [frame] { delete frame; });
    EXPECT_EQ(FileDialog::getOpenFileName(frame, "Open", dir.path(), ".sor"), "");
}

} // namespace
