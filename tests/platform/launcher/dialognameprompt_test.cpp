#include "platform/launcher/dialognameprompt.h"
#include "platform/launcher/namedialog.h"
#include "tests/platform/launcher/ondialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using testing_support::onDialog;

namespace {

QPushButton* button(const QWidget* dialog, const QString& text)
{
    const auto all = dialog->findChildren<QPushButton*>();
    for (QPushButton* one : all) {
        if (one->text().remove('&') == text) {
            return one;
        }
    }
    return nullptr;
}

} // namespace

TEST(NameDialog, OffersTheProposedNameReadyToBeTypedOver)
{
    const NameDialog dialog("trace_0001", nullptr);
    auto* edit = dialog.findChild<QLineEdit*>();
    EXPECT_EQ(edit->text(), "trace_0001");
    EXPECT_EQ(edit->selectedText(), "trace_0001");
    EXPECT_GE(edit->minimumHeight(), 44);
    for (const char* text : {"Save", "Cancel"}) {
        ASSERT_NE(button(&dialog, text), nullptr) << text;
        EXPECT_GE(button(&dialog, text)->minimumHeight(), 44);
    }
}

TEST(NameDialog, CanSaveOnlyUnderAUsableName)
{
    const NameDialog dialog("", nullptr);
    auto* edit = dialog.findChild<QLineEdit*>();
    const QPushButton* save = button(&dialog, "Save");
    EXPECT_FALSE(save->isEnabled());
    edit->setText("x");
    EXPECT_TRUE(save->isEnabled());
    edit->setText(" .. ");
    EXPECT_FALSE(save->isEnabled());
}

TEST(NameDialog, SaysWhyANameIsNoneAndHowItWillBeChanged)
{
    NameDialog dialog("trace_0001", nullptr);
    dialog.show();
    auto* edit = dialog.findChild<QLineEdit*>();
    const auto* hint = dialog.findChild<QLabel*>("hint");
    EXPECT_EQ(hint->text(), "");
    edit->setText("");
    EXPECT_EQ(hint->text(), "Please type a name.");
    edit->setText("   ");
    EXPECT_EQ(hint->text(), "Please type a name.");
    edit->setText("..");
    EXPECT_EQ(hint->text(), "This name cannot be used: it is nothing but dots and blanks.");
    edit->setText("../x");
    EXPECT_EQ(hint->text(), "It will be saved as \"_x\".");
    edit->setText("CON");
    EXPECT_EQ(hint->text(), "It will be saved as \"_CON\".");
    edit->setText("half of ");
    EXPECT_EQ(hint->text(), "") << "a blank being typed is no mistake";
}

TEST(NameDialog, NeverGetsWiderThanTheInstrument)
{
    NameDialog dialog("trace_0001", nullptr);
    dialog.show();
    EXPECT_LE(dialog.width(), 800);
    EXPECT_LE(dialog.height(), 480);
    dialog.findChild<QLineEdit*>()->setText(QString(300, 'x'));
    EXPECT_LE(dialog.minimumSizeHint().width(), 800);
    const auto* hint = dialog.findChild<QLabel*>("hint");
    EXPECT_TRUE(hint->text().contains(QChar(0x2026)));
    EXPECT_LE(hint->fontMetrics().horizontalAdvance(hint->text()), hint->width());
}

TEST(NameDialog, FocusGoesFromTheNameToTheButtonsAndNeverToAKey)
{
    NameDialog dialog("trace_0001", nullptr);
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    EXPECT_TRUE(dialog.findChild<QLineEdit*>()->hasFocus());
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(dialog.focusWidget(), button(&dialog, "Cancel"));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(dialog.focusWidget(), button(&dialog, "Save"));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(dialog.focusWidget(), dialog.findChild<QLineEdit*>());
}

TEST(NameDialog, EnterSavesOnlyUnderAUsableName)
{
    NameDialog dialog("", nullptr);
    dialog.show();
    auto* edit = dialog.findChild<QLineEdit*>();
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible());
    QTest::mouseClick(button(&dialog, "q"), Qt::LeftButton);
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.name(), "q");
}

TEST(DialogNamePrompt, AnswersWhatWasTouched)
{
    onDialog([](QWidget& dialog) {
        for (const char* key : {"s", "7", "Save"}) { // the first types over the proposed name
            QTest::mouseClick(button(&dialog, key), Qt::LeftButton);
        }
    });
    EXPECT_EQ(DialogNamePrompt().askName("trace_0001").value_or("nothing"), "s7");
}

TEST(DialogNamePrompt, AnswersWhatWasTyped)
{
    onDialog([](QWidget& dialog) {
        QTest::keyClicks(dialog.findChild<QLineEdit*>(), "site 7");
        button(&dialog, "Save")->click();
    });
    EXPECT_EQ(DialogNamePrompt().askName("trace_0001").value_or("nothing"), "site 7");
}

TEST(DialogNamePrompt, AnswersNothingWhenCancelled)
{
    onDialog([](QWidget& dialog) { button(&dialog, "Cancel")->click(); });
    EXPECT_FALSE(DialogNamePrompt().askName("trace_0001").has_value());
    onDialog([](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_FALSE(DialogNamePrompt().askName("trace_0001").has_value());
}

TEST(DialogNamePrompt, StandsAParentThatGoesWhileTheUserTypes)
{
    auto* frame = new QWidget;
    frame->show();
    frame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(frame));
    onDialog([frame](QWidget& dialog) {
        EXPECT_EQ(dialog.parentWidget(), frame);
        delete frame;
    });
    EXPECT_FALSE(DialogNamePrompt().askName("trace_0001").has_value());
}

TEST(DialogNamePrompt, ReplacesAFileOnlyOnAYes)
{
    onDialog([](QWidget& dialog) {
        auto* box = qobject_cast<QMessageBox*>(&dialog);
        ASSERT_NE(box, nullptr);
        EXPECT_TRUE(box->text().contains("\"<b>old\""));
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        EXPECT_GE(box->button(QMessageBox::Yes)->minimumHeight(), 44);
        box->button(QMessageBox::Yes)->click();
    });
    EXPECT_TRUE(DialogNamePrompt().askOverwrite("<b>old"));
    onDialog([](QWidget& dialog) {
        qobject_cast<QMessageBox*>(&dialog)->button(QMessageBox::No)->click();
    });
    EXPECT_FALSE(DialogNamePrompt().askOverwrite("old"));
    onDialog([](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_FALSE(DialogNamePrompt().askOverwrite("old"));
}

TEST(DialogNamePrompt, LongNameDoesNotMakeTheQuestionWiderThanTheInstrument)
{
    onDialog([](QWidget& dialog) {
        EXPECT_LE(dialog.sizeHint().width(), 780);
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    EXPECT_FALSE(DialogNamePrompt().askOverwrite(QString(200, 'W')));
}
