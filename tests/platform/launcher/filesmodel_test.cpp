#include "platform/launcher/filesmodel.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class Files : public testing::Test
{
protected:
    QString make(const QString& name, int age_s = 0, int size = 3) const
    {
        QFile file(dir.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadWrite));
        file.write(QByteArray(size, 'x'));
        file.flush();
        EXPECT_TRUE(file.setFileTime(kNow.addSecs(-age_s), QFileDevice::FileModificationTime));
        return file.fileName();
    }

    static QStringList names(const FilesModel& model)
    {
        QStringList names;
        for (int row = 0; row < model.rowCount(); ++row) {
            names << model.index(row, FilesModel::Name).data().toString();
        }
        return names;
    }

    static bool check(FilesModel& model, int row, Qt::CheckState state = Qt::Checked)
    {
        return model.setData(model.index(row, 0), state, Qt::CheckStateRole);
    }

    static bool isEnabled(const FilesModel& model, int row)
    {
        return model.flags(model.index(row, 1)).testFlag(Qt::ItemIsEnabled);
    }

    const QDateTime kNow {QDate(2024, 2, 29), QTime(12, 30)};
    const QTemporaryDir dir;
};

TEST_F(Files, ComeTheNewestFirst)
{
    make("old.sor", 100);
    make("new.sor", 0);
    make("b.sor", 50);
    make("a.sor", 50);
    FilesModel model({"*.sor"}, 4);
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Warning);
    model.setDirectory(dir.path());
    EXPECT_EQ(names(model), (QStringList {"new.sor", "a.sor", "b.sor", "old.sor"}));
}

TEST_F(Files, AreThoseOfTheFilterOnly)
{
    make("a.sor");
    make("B.SOR");
    make("a.html");
    make("a.sor.tmp");
    make(".waveform-1-0");
    make(".hidden.sor");
    QDir(dir.path()).mkdir("folder.sor");
    FilesModel model({"*.sor"}, 4);
    model.setDirectory(dir.path());
    EXPECT_EQ(names(model), (QStringList {"B.SOR", "a.sor"}));
}

TEST_F(Files, ShowDateAndSize)
{
    make("a.sor", 0, 15000);
    FilesModel model({"*.sor"}, 4);
    model.setDirectory(dir.path());
    EXPECT_EQ(model.index(0, FilesModel::Date).data().toString(), "29.02.2024 12:30");
    EXPECT_EQ(model.index(0, FilesModel::Size).data().toString(), "15 kB");
}

TEST_F(Files, AreNoneWhereTheDirectoryIsGone)
{
    make("a.sor");
    FilesModel model({"*.sor"}, 4);
    model.setDirectory(dir.path());
    model.setDirectory(dir.filePath("pulled"));
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(Files, CanBeCheckedUpToTheLimit)
{
    const QString a = make("a.sor");
    make("b.sor");
    const QString c = make("c.sor");
    FilesModel model({"*.sor"}, 2);
    model.setDirectory(dir.path());
    const QSignalSpy changed(&model, &FilesModel::checkedChanged);
    EXPECT_TRUE(check(model, 2));
    EXPECT_TRUE(check(model, 0));
    EXPECT_EQ(model.checked(), (QStringList {c, a})) << "in the order of choosing";
    EXPECT_EQ(model.left(), 0);
    EXPECT_FALSE(isEnabled(model, 1));
    EXPECT_TRUE(isEnabled(model, 0)) << "it could not be unchecked";
    EXPECT_FALSE(check(model, 1));
    EXPECT_TRUE(check(model, 2, Qt::Unchecked));
    EXPECT_EQ(model.left(), 1);
    EXPECT_TRUE(isEnabled(model, 1));
    EXPECT_EQ(model.checked(), QStringList {a});
    EXPECT_EQ(changed.size(), 3);
}

TEST_F(Files, CheckingAnotherTakesThePlaceWhereOneAloneMayBe)
{
    make("a.sor");
    const QString b = make("b.sor");
    FilesModel model({"*.sor"}, 1);
    model.setDirectory(dir.path());
    EXPECT_TRUE(check(model, 0));
    EXPECT_TRUE(check(model, 1));
    EXPECT_EQ(model.checked(), QStringList {b});
}

TEST_F(Files, StayCheckedWhileAnotherDirectoryIsShown)
{
    const QString a = make("a.sor");
    QDir(dir.path()).mkdir("stick");
    const QString b = make("stick/b.sor");
    FilesModel model({"*.sor"}, 2);
    model.setDirectory(dir.path());
    EXPECT_TRUE(check(model, 0));
    model.setDirectory(dir.filePath("stick"));
    EXPECT_TRUE(check(model, 0));
    EXPECT_EQ(model.checked(), (QStringList {a, b}));
    model.setDirectory(dir.path());
    EXPECT_EQ(model.index(0, 0).data(Qt::CheckStateRole).toInt(), Qt::Checked);
}

} // namespace
