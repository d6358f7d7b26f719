// Whether fingers hit and keys reach everything in the launcher's dialogs, and longer words fit.

#include "platform/launcher/launcherstyle.h"
#include "platform/launcher/namedialog.h"
#include "platform/launcher/opendialog.h"
#include "platform/launcher/pluginicon.h"
#include "platform/launcher/warningwindow.h"
#include "tests/platform/launcher/look.h"
#include "tests/support/reach.h"

#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTreeView>
#include <QtTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace testing_support;

std::unique_ptr<QWidget> openDialog(const QTemporaryDir& dir)
{
    for (const char* name : {"a.sor", "b.sor"}) {
        QFile file(dir.filePath(name));
        file.open(QFile::WriteOnly);
    }
    const FileDialog::Request request {
        "Load", {{"Storage", dir.path()}, {"USB flash", dir.path()}}, ".sor", 2};
    auto dialog = std::make_unique<OpenDialog>(request, nullptr);
    dialog->show();
    // "Load" can be pressed once something is chosen.
    QTest::keyClick(dialog->findChild<QTreeView*>(), Qt::Key_Space);
    return dialog;
}

std::unique_ptr<QWidget> made(const std::string& kind, const QTemporaryDir& dir)
{
    if (kind == "open") {
        return openDialog(dir);
    }
    if (kind == "name") {
        return std::make_unique<NameDialog>("link", nullptr);
    }
    if (kind == "warning") {
        auto warning = std::make_unique<WarningWindow>();
        warning->show("The measurement could not be started.");
        return warning;
    }
    return std::make_unique<QMessageBox>(QMessageBox::Question, QString(), "Replace it?",
                                         QMessageBox::Yes | QMessageBox::No);
}

class Dialogs : public testing::TestWithParam<const char*>
{
protected:
    QWidget& shown()
    {
        dialog = made(GetParam(), dir);
        dialog->show();
        QCoreApplication::processEvents();
        return *dialog;
    }

    const QTemporaryDir dir;
    const LookIn look {PaletteFactory::Light::Day};
    std::unique_ptr<QWidget> dialog;
};

TEST_P(Dialogs, FitOnTheInstrument)
{
    const QWidget& window = shown();
    EXPECT_LE(window.width(), 800);
    EXPECT_LE(window.height(), 480);
}

TEST_P(Dialogs, FingersHitEveryButton)
{
    EXPECT_EQ(smallTargets(shown()).join('\n').toStdString(), "");
}

TEST_P(Dialogs, TabComesByEverything)
{
    QWidget& window = shown();
    EXPECT_EQ(unreachable(window).join('\n').toStdString(), "");
    EXPECT_FALSE(tabChain(window).isEmpty());
}

TEST_P(Dialogs, SpaceAndEnterPressEveryButton)
{
    EXPECT_EQ(deafToKeys(shown()).join('\n').toStdString(), "");
}

TEST_P(Dialogs, LongerWordsFit)
{
    const LongerTexts longer;
    for (const char* family : {"Liberation Sans", "DejaVu Sans", "Noto Sans"}) {
        QApplication::setFont(QFont(family, QApplication::font().pointSize()));
        const QWidget& window = shown();
        EXPECT_EQ(clippedTexts(window).join('\n').toStdString(), "") << family;
        EXPECT_LE(window.width(), 800) << family;
    }
}

INSTANTIATE_TEST_SUITE_P(Launcher, Dialogs, testing::Values("open", "name", "warning", "question"));

TEST(DirectoryDialog, IsForFingers)
{
    const LookIn look(PaletteFactory::Light::Day);
    const QTemporaryDir dir;
    QFileDialog dialog(nullptr, "Other", dir.path());
    dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::ShowDirsOnly);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.show();
    EXPECT_EQ(smallTargets(dialog).join('\n').toStdString(), "");
    EXPECT_LE(dialog.minimumSizeHint().width(), 800);
    EXPECT_LE(dialog.minimumSizeHint().height(), 480);
}

TEST(StartScreen, IconsAreForFingersAndKeys)
{
    const LookIn look(PaletteFactory::Light::Day);
    QWidget screen;
    const PluginIcon icon("Waveform", QIcon(), &screen);
    screen.resize(300, 200);
    screen.show();
    EXPECT_EQ(smallTargets(screen), QStringList());
    EXPECT_EQ(unreachable(screen), QStringList());
    EXPECT_EQ(deafToKeys(screen).join('\n').toStdString(), "");
}

} // namespace
