#include "platform/launcher/filedialog.h"

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

template <typename Deed>
void onDialog(Deed deed)
{
    QTimer::singleShot(0, qApp, [deed] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        deed(dialog);
    });
}

} // namespace

TEST(FileDialog, AnswersTheFileThatWasChosen)
{
    const QTemporaryDir dir;
    const QString file = dir.filePath("link.sor");
    ASSERT_TRUE(QFile(file).open(QIODevice::WriteOnly));
    onDialog([&](QFileDialog* dialog) {
        EXPECT_EQ(dialog->directory().absolutePath(), QDir(dir.path()).absolutePath());
        EXPECT_EQ(dialog->nameFilters(), QStringList {"*.sor"});
        EXPECT_EQ(dialog->windowTitle(), "Open");
        EXPECT_TRUE(dialog->testOption(QFileDialog::DontUseNativeDialog));
        for (const auto* button : dialog->findChildren<QPushButton*>()) {
            EXPECT_GE(button->minimumHeight(), 44);
        }
        dialog->selectFile(file);
        QMetaObject::invokeMethod(dialog, "accept");
    });
    EXPECT_EQ(FileDialog::getOpenFileName(nullptr, "Open", dir.path(), ".sor"), file);
}

TEST(FileDialog, AnswersNothingWhenCancelled)
{
    const QTemporaryDir dir;
    onDialog([](QFileDialog* dialog) {
        EXPECT_EQ(dialog->nameFilters(), QStringList {"Traces (*.sor)"});
        dialog->reject();
    });
    EXPECT_EQ(FileDialog::getOpenFileName(nullptr, "Open", dir.path(), "Traces (*.sor)"), "");
}

TEST(FileDialog, StandsAParentThatGoesWhileTheUserChooses)
{
    const QTemporaryDir dir;
    auto* frame = new QWidget;
    onDialog([frame](QFileDialog* /*dialog*/) { delete frame; });
    EXPECT_EQ(FileDialog::getOpenFileName(frame, "Open", dir.path(), ".sor"), "");
}
