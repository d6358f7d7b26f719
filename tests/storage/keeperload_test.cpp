// Loading: the limit, the dialog, what cannot be read.

#include "platform/launcher/filesmodel.h"
#include "platform/launcher/opendialog.h"
#include "platform/launcher/zulauncherconfig.h"
#include "tests/storage/keeping.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

namespace {

using namespace testing_support; // fixture, builder and units

class KeepingLoad : public Keeping
{
protected:
    KeepingLoad() { QDir().mkpath(stored("")); }

    /// Loads what is checked in the dialog, or cancels it.
    template <typename Deed>
    int load(Deed deed, bool accept = true)
    {
        QTimer::singleShot(0, &keeper, [deed, accept] {
            auto* dialog = qobject_cast<OpenDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            deed(*dialog);
            accept ? dialog->accept() : dialog->reject();
        });
        return keeper.doLoad();
    }

    static QStringList names(const OpenDialog& dialog)
    {
        const auto* model = dialog.findChild<FilesModel*>();
        QStringList names;
        for (int row = 0; row < model->rowCount(); ++row) {
            names << model->index(row, 0).data().toString();
        }
        return names;
    }

    static void check(const OpenDialog& dialog, const QString& name)
    {
        auto* model = dialog.findChild<FilesModel*>();
        model->setData(model->index(names(dialog).indexOf(name), 0), Qt::Checked,
                       Qt::CheckStateRole);
    }

    static QStringList places(const OpenDialog& dialog)
    {
        QStringList places;
        for (const auto* button : dialog.findChildren<QPushButton*>()) {
            if (button->isCheckable()) {
                places << button->text();
            }
        }
        return places;
    }
};

TEST_F(KeepingLoad, FifthTraceIsRefusedBeforeAnyFileIsOpened)
{
    for (int i = 0; i < 4; ++i) {
        keeper.doLoadFile(files.write(QString("%1.sor").arg(i), SorSketch::plain()));
    }
    EXPECT_EQ(refls.rowCount(), 4);
    const QSignalSpy loads(&keeper, SIGNAL(loadRefl(QString)));
    const QSignalSpy limits(&keeper, SIGNAL(maxReflsLimitReached()));
    EXPECT_EQ(keeper.doLoadFile(files.write("5.sor", SorSketch::plain())), -1);
    EXPECT_EQ(keeper.doLoad(), -1); // a picker would wait for an answer here
    EXPECT_EQ(loads.size(), 0);
    EXPECT_EQ(limits.size(), 0) << "the text is how it is told";
    EXPECT_EQ(refls.rowCount(), 4);
    ASSERT_EQ(notified.size(), 2);
    EXPECT_EQ(notified.first().first().toString(),
              "Only 4 reflectograms can be loaded at the same time.\nPlease, remove one or more "
              "from the \"Reflectograms\" table");
}

TEST_F(KeepingLoad, OffersTheTracesOfTheStorageDirectory)
{
    const QString file = files.write("home/otdr/a.sor", SorSketch::plain());
    files.write("home/otdr/a.html", Bytes(1));
    const auto pick = [](const OpenDialog& dialog) {
        EXPECT_EQ(names(dialog), QStringList {"a.sor"});
        EXPECT_EQ(places(dialog), QStringList {"Storage"});
        check(dialog, "a.sor");
    };
    EXPECT_NE(load(pick, false), 0);
    EXPECT_EQ(refls.rowCount(), 0);
    EXPECT_EQ(load(pick), 0);
    ASSERT_EQ(refls.rowCount(), 1);
    EXPECT_EQ(refls.refls().first().fileName(), file);
}

TEST_F(KeepingLoad, TakesAsManyFilesAsStillFit)
{
    refls.addReflFromFile(files.write("loaded.sor", SorSketch::plain()));
    for (const char* name : {"a.sor", "b.sor", "c.sor", "d.sor"}) {
        files.write(QString("home/otdr/") + name, SorSketch::plain());
    }
    EXPECT_EQ(load([](const OpenDialog& dialog) {
                  EXPECT_EQ(dialog.findChild<QLabel*>("left")->text(), "May still be loaded: 3");
                  for (const char* name : {"a.sor", "b.sor", "c.sor", "d.sor"}) {
                      check(dialog, name);
                  }
              }),
              0);
    EXPECT_EQ(refls.rowCount(), 4);
    EXPECT_TRUE(notified.isEmpty());
}

TEST_F(KeepingLoad, OffersTheFlashDriveWhileItIsThere)
{
    ZuLauncherConfig("flash", "dir").store(files.path("stick"));
    load([](const OpenDialog& dialog) { EXPECT_EQ(places(dialog).size(), 1); }, false);
    QDir().mkpath(files.path("stick"));
    files.write("stick/root.sor", SorSketch::plain());
    const auto namesOnDrive = [](const OpenDialog& dialog) {
        EXPECT_EQ(places(dialog), (QStringList {"Storage", "Flash drive"}));
        for (auto* button : dialog.findChildren<QPushButton*>()) {
            if (button->text() == "Flash drive") {
                button->click();
            }
        }
        return names(dialog);
    };
    load(
        [&](const OpenDialog& dialog) {
            EXPECT_EQ(namesOnDrive(dialog), QStringList {"root.sor"});
        },
        false);
    QDir().mkpath(files.path("stick/otdr"));
    files.write("stick/otdr/own.sor", SorSketch::plain());
    load(
        [&](const OpenDialog& dialog) { EXPECT_EQ(namesOnDrive(dialog), QStringList {"own.sor"}); },
        false);
}

TEST_F(KeepingLoad, SaysWhatCannotBeLoadedAndLoadsTheRest)
{
    files.write("home/otdr/good.sor", SorSketch::plain());
    files.write("home/otdr/bad.sor", Bytes(10));
    const QString pulled = files.write("home/otdr/pulled.sor", SorSketch::plain());
    EXPECT_EQ(load([&](const OpenDialog& dialog) {
                  for (const char* name : {"bad.sor", "good.sor", "pulled.sor"}) {
                      check(dialog, name);
                  }
                  QFile::remove(pulled);
              }),
              0);
    EXPECT_EQ(refls.rowCount(), 1);
    ASSERT_EQ(notified.size(), 1) << "one text for all";
    const QString text = notified.first().first().toString();
    EXPECT_TRUE(text.contains("bad.sor")) << text.toStdString();
    EXPECT_TRUE(text.contains("pulled.sor")) << text.toStdString();
    EXPECT_FALSE(text.contains("good.sor")) << text.toStdString();
}

TEST_F(KeepingLoad, SaysOfWhichFilesAPartIsMissing)
{
    const Bytes whole = SorSketch::plain().build();
    files.write("home/otdr/whole.sor", whole);
    files.write("home/otdr/cut.sor", Bytes(whole.begin(), whole.end() - 2000));
    EXPECT_EQ(load([&](const OpenDialog& dialog) {
                  for (const char* name : {"cut.sor", "whole.sor"}) {
                      check(dialog, name);
                  }
              }),
              0);
    EXPECT_EQ(refls.rowCount(), 2) << "what is left is shown";
    ASSERT_EQ(notified.size(), 1);
    const QString text = notified.first().first().toString();
    EXPECT_TRUE(text.startsWith("cut.sor: the file is damaged")) << text.toStdString();
    EXPECT_TRUE(text.contains("of 4000 samples the file holds ")) << text.toStdString();
    EXPECT_FALSE(text.contains("whole.sor")) << text.toStdString();
    EXPECT_EQ(text.count('\n'), 0) << "one line a file, so that the message fits the screen";
}

TEST_F(KeepingLoad, SaysOfANamedFileOnceThatAPartIsMissing)
{
    const Bytes whole = SorSketch::plain().build();
    const QString cut = files.write("cut.sor", Bytes(whole.begin(), whole.end() - 2000));
    EXPECT_EQ(keeper.doLoadFile(cut), 0);
    ASSERT_EQ(notified.size(), 1);
    EXPECT_TRUE(notified.first().first().toString().startsWith("cut.sor: the file is damaged"));
    EXPECT_EQ(keeper.doLoadFile(cut), 0);
    EXPECT_EQ(notified.size(), 1) << "it is loaded already";
}

TEST_F(KeepingLoad, SaysNothingOfWhatAMakerDoesOtherwise)
{
    SorSketch sketch = SorSketch::plain();
    sketch.tail = Bytes(103);
    keeper.doLoadFile(files.write("tail.sor", sketch));
    ASSERT_EQ(refls.refls().value(0).notes().size(), 1);
    EXPECT_TRUE(notified.isEmpty());
}

TEST_F(KeepingLoad, KeeperMayGoWhileTheUserChooses)
{
    auto* passing = new Keeper(&card, &refls);
    QTimer::singleShot(0, qApp, [passing] {
        delete passing;
        auto* dialog = qobject_cast<OpenDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        dialog->accept();
    });
    EXPECT_NE(passing->doLoad(), 0);
}

} // namespace
