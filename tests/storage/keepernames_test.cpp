// Names typed by the user: each is saved under a safe name in the storage directory, or not at all.

#include "platform/launcher/nameprompt.h"
#include "tests/platform/launcher/answer.h"
#include "tests/platform/launcher/ondialog.h"
#include "tests/storage/keeping.h"

#include <QAbstractButton>
#include <QDir>
#include <QDirIterator>
#include <QLineEdit>
#include <QTest>

#include <utility>

namespace {

using namespace testing_support; // fixture, builder and units

/// Types a name, lets no file be replaced, and gives up.
class CarefulTypist : public NamePrompt
{
public:
    CarefulTypist(QString name, QStringList& asked)
        : name(std::move(name))
        , asked(asked)
    {
    }

    std::optional<QString> askName(const QString& /*proposed*/) override
    {
        return std::exchange(name, std::nullopt);
    }

    bool askOverwrite(const QString& taken) override
    {
        asked << taken;
        return false;
    }

private:
    std::optional<QString> name;
    QStringList& asked;
};

class KeepingNames : public Keeping
{
protected:
    KeepingNames()
    {
        refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
        before = everything();
    }

    /// All files of this test, wherever they are.
    QStringList everything() const
    {
        QStringList all;
        QDirIterator it(files.path(""), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            all << it.next();
        }
        all.sort();
        return all;
    }

    /// What a save under the typed name made.
    QStringList made(const QString& typed)
    {
        keeper.setNamePrompt(std::make_unique<Answer>(typed));
        keeper.save();
        QStringList now = everything();
        for (const QString& file : qAsConst(before)) {
            EXPECT_TRUE(now.removeOne(file)) << file.toStdString() << " is gone";
        }
        return now;
    }

    QStringList before;
};

struct Typed
{
    const char* name;
    QString typed;
    QString base; ///< of the files it is saved under; empty where it is refused
};

class TypedNames : public KeepingNames, public testing::WithParamInterface<Typed>
{
};

TEST_P(TypedNames, StayInTheStorageDirectoryOrAreRefused)
{
    const Typed& param = GetParam();
    const QStringList files = made(param.typed);
    if (param.base.isEmpty()) {
        EXPECT_TRUE(files.isEmpty()) << files.join(' ').toStdString();
        EXPECT_EQ(saved.size(), 0);
        return;
    }
    EXPECT_EQ(files,
              (QStringList {stored(param.base + ".html"), stored(param.base + ".png"),
                            stored(param.base + ".sor")}));
    EXPECT_TRUE(Reflectogram(stored(param.base + ".sor")).isValid());
    EXPECT_TRUE(keeper.fileExists(param.typed)) << "the question would not come";
}

const QString kEmoji = QString::fromUtf8("\U0001F4C8");

INSTANTIATE_TEST_SUITE_P(
    Keeping, TypedNames,
    testing::Values(Typed {"Parent", "../x", "_x"}, Typed {"Folder", "a/b", "a_b"},
                    Typed {"Absolute", "/tmp/x", "_tmp_x"}, Typed {"Backslash", "..\\x", "_x"},
                    Typed {"Empty", "", ""}, Typed {"Blanks", "   ", ""}, Typed {"Dots", "..", ""},
                    Typed {"Long", QString(300, 'n'), QString(200, 'n')},
                    Typed {"Emoji", kEmoji, kEmoji},
                    Typed {"ManyEmoji", kEmoji.repeated(80), kEmoji.repeated(50)},
                    Typed {"TrailingDots", "link...", "link"}, Typed {"Device", "CON", "_CON"},
                    Typed {"LeadingDot", ".link", "link"}, Typed {"Extension", "a.sor", "a.sor"},
                    Typed {"Option", "-o", "-o"}, Typed {"Shell", "$(id);'", "$(id);'"}),
    [](const auto& info) { return info.param.name; });

void touch(const QWidget& dialog, const QString& text)
{
    for (auto* button : dialog.findChildren<QAbstractButton*>()) {
        if (button->text().remove('&') == text) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    FAIL() << "no button " << text.toStdString();
}

TEST_F(KeepingNames, NameIsProposedAndTypedOverWithTheKeysOnTheScreen)
{
    onDialog([](const QWidget& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>()->text(), "a");
        for (const char* key : {"n", "o", "7", "Save"}) {
            touch(dialog, key);
        }
    });
    keeper.save();
    EXPECT_TRUE(Reflectogram(stored("no7.sor")).isValid());
}

TEST_F(KeepingNames, FileThatIsThereIsReplacedOnlyOnAYes)
{
    QDir().mkpath(stored(""));
    files.write("home/otdr/a.sor", Bytes(1));
    onDialog([](const QWidget& dialog) {
        onDialog([](const QWidget& question) {
            onDialog([](QWidget& again) { QTest::keyClick(&again, Qt::Key_Escape); });
            touch(question, "No");
        });
        touch(dialog, "Save");
    });
    keeper.save();
    EXPECT_EQ(QFileInfo(stored("a.sor")).size(), 1);
    onDialog([](const QWidget& dialog) {
        onDialog([](const QWidget& question) { touch(question, "Yes"); });
        touch(dialog, "Save");
    });
    keeper.save();
    EXPECT_TRUE(Reflectogram(stored("a.sor")).isValid());
}

TEST_F(Keeping, FilesOfAGroupAreReplacedOnlyOnAYes)
{
    const Reflectogram first = addMeasured();
    const Reflectogram second = addMeasured();
    refls.associate(second, first);
    QStringList asked;
    const auto save = [&] {
        keeper.setNamePrompt(std::make_unique<CarefulTypist>("link", asked));
        keeper.save();
    };
    save();
    EXPECT_EQ(saved.size(), 2);
    EXPECT_TRUE(asked.isEmpty()) << "nothing was there yet";
    ASSERT_FALSE(QFile::exists(stored("link.sor")));
    save();
    EXPECT_EQ(asked, QStringList("link"));
    EXPECT_EQ(saved.size(), 2);
    refls.deleteAllRefls();
    addMeasured();
    save(); // a lone one has another name
    EXPECT_EQ(asked.size(), 1);
    EXPECT_EQ(saved.size(), 3);
}

TEST_F(Keeping, NameCannotLeaveTheStorageDirectory)
{
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    EXPECT_EQ(keeper.doSave("../../outside"), 0);
    EXPECT_FALSE(QFile::exists(files.path("outside.sor")));
    ASSERT_EQ(saved.size(), 1);
    EXPECT_EQ(QFileInfo(saved.first().first().toString()).path(), files.path("home/otdr"));
    EXPECT_TRUE(keeper.fileExists("../../outside"));
    EXPECT_NE(keeper.doSave("..."), 0) << "nothing usable is left of it";
}

} // namespace
