// The file picker begins where the last file was found.

#include "platform/launcher/filedialog.h"
#include "platform/launcher/opendialog.h"
#include "platform/launcher/zulauncherconfig.h"
#include "tests/platform/launcher/confighome.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>
#include <QtTest>

#include <gtest/gtest.h>

namespace {

class LastPlace : public testing::Test
{
protected:
    LastPlace()
    {
        for (const char* name : {"storage/a.sor", "stick/b.sor"}) {
            EXPECT_TRUE(QDir(dir.path()).mkpath(QFileInfo(name).path()));
            EXPECT_TRUE(QFile(dir.filePath(name)).open(QIODevice::WriteOnly));
        }
    }

    /// Opens the picker, presses the button of a place (none: leaves it), then the first file and
    /// Load, or Escape.
    /// \return the directory that was shown at first
    QString pick(const QString& place, bool accept, const QString& rememberedAs = "loaded",
                 QStringList places = {"storage", "stick"})
    {
        QString shown;
        QTimer::singleShot(0, qApp, [&] {
            auto* dialog = qobject_cast<OpenDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            shown = QDir(dir.path()).relativeFilePath(dialog->directory());
            buttons = 0;
            for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
                ++buttons;
                if (button->text() == place) {
                    QTest::mouseClick(button, Qt::LeftButton);
                }
            }
            auto* list = dialog->findChild<QTreeView*>();
            if (accept) {
                const QRect row = list->visualRect(list->model()->index(0, 0));
                QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
                QTest::keyClick(dialog, Qt::Key_Return); // the button that loads
            }
            if (dialog->isVisible()) {
                QTest::keyClick(dialog, Qt::Key_Escape);
            }
        });
        QVector<FileDialog::Place> all;
        for (const QString& name : places) {
            all << FileDialog::Place {name, dir.filePath(name)};
        }
        picked = FileDialog::getOpenFileNames(nullptr, {"Open", all, ".sor", 1, rememberedAs});
        return shown;
    }

    const testing_support::ConfigHome config;
    const QTemporaryDir dir;
    QStringList picked;
    int buttons = 0;
};

TEST_F(LastPlace, IsTheFirstPlaceBeforeAnythingWasChosen)
{
    EXPECT_EQ(pick({}, false), "storage");
}

TEST_F(LastPlace, IsShownAgain)
{
    pick("stick", true);
    ASSERT_EQ(picked, QStringList {dir.filePath("stick/b.sor")});
    const int before = buttons;
    EXPECT_EQ(pick({}, true), "stick");
    EXPECT_EQ(picked, QStringList {dir.filePath("stick/b.sor")});
    EXPECT_EQ(buttons, before) << "a place that is there already has two buttons";
}

TEST_F(LastPlace, ThatIsNoneOfThePlacesIsOneMore)
{
    pick("stick", true);
    const int before = buttons;
    EXPECT_EQ(pick({}, false, "loaded", {"storage"}), "stick");
    EXPECT_EQ(buttons, before) << "storage, stick and the rest";
}

TEST_F(LastPlace, ThatIsGoneIsForgotten)
{
    pick("stick", true);
    ASSERT_TRUE(QDir(dir.filePath("stick")).removeRecursively());
    EXPECT_EQ(pick({}, false), "storage");
}

TEST_F(LastPlace, IsNotWhereNothingWasChosen)
{
    pick("stick", false);
    EXPECT_EQ(pick({}, false), "storage");
}

TEST_F(LastPlace, IsKeptByThoseOnlyWhoAskForIt)
{
    pick("stick", true, {});
    EXPECT_EQ(ZuLauncherConfig("paths", "loaded").toString(), "");
    EXPECT_EQ(pick({}, false), "storage");
}

} // namespace
