#include "app/language.h"
#include "tests/app/application.h"
#include "tests/support/inlocale.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QImage>
#include <QLibraryInfo>

#include <gmock/gmock.h>

namespace {

using namespace testing_support; // the fixture and builders

class Languages : public testing::Test
{
protected:
    static QString load() { return QCoreApplication::translate("Frame", "Load"); }

    static QString number() { return QLocale().toString(12345.5, 'f', 1); }

    const InLocale inC {QLocale::c()};
};

TEST_F(Languages, AreEnglishAndWhatIsTranslated)
{
    EXPECT_EQ(Language::known(), QStringList({"en", "ru"}));
}

TEST_F(Languages, FirstKnownOneOfThoseAskedForIsChosen)
{
    EXPECT_EQ(Language::chosen({"ru-RU", "ru"}), "ru");
    EXPECT_EQ(Language::chosen({"ru_RU"}), "ru");
    EXPECT_EQ(Language::chosen({"xx-YY", "ru"}), "ru");
    EXPECT_EQ(Language::chosen({"en-GB", "ru-RU"}), "en") << "the sources speak it themselves";
    EXPECT_EQ(Language::chosen({"xx"}), "en");
    EXPECT_EQ(Language::chosen({"rum"}), "en");
    EXPECT_EQ(Language::chosen({}), "en");
}

TEST_F(Languages, OneThatIsNamedIsSpokenWithItsNumbers)
{
    const Language language("ru");
    EXPECT_EQ(load(), "Открыть");
    EXPECT_EQ(number(), "12345,5");
}

TEST_F(Languages, EnglishIsNamedAsAnyOther)
{
    const Language language("en");
    EXPECT_EQ(load(), "Load");
    EXPECT_EQ(number(), "12345.5");
}

TEST_F(Languages, GoWithWhoBroughtThem)
{
    {
        const Language language("ru");
    }
    EXPECT_EQ(load(), "Load");
    EXPECT_EQ(number(), "12345.5");
}

TEST_F(Languages, WordsOfTheToolkitComeAlong)
{
    if (!QFileInfo::exists(QLibraryInfo::location(QLibraryInfo::TranslationsPath)
                           + "/qtbase_ru.qm")) {
        GTEST_SKIP() << "Qt's translations are not installed (package qttranslations5-l10n)";
    }
    const Language language("ru");
    EXPECT_NE(QCoreApplication::translate("QPlatformTheme", "&Yes"), "&Yes");
}

/// The window as a user of a system sees it, whose environment tells its language.
class LanguageOfTheSystem : public Application
{
protected:
    QImage window(const QMap<QString, QString>& environment, const QStringList& options = {})
    {
        QMap<QString, QString> changes {{"LC_ALL", ""}, {"LC_NUMERIC", ""}, {"LC_MESSAGES", ""},
                                        {"LANG", ""},   {"LANGUAGE", ""},   {"LC_MEASUREMENT", ""}};
        for (auto it = environment.begin(); it != environment.end(); ++it) {
            changes[it.key()] = it.value();
        }
        changes["WAVEFORM_PROGRAMS"] = WAVEFORM_BIN;
        const QString picture = dir.filePath("picture.png");
        const Outcome outcome =
            start(program(),
                  options
                      + QStringList {"--screenshot", picture, "--show", "events,reflectograms",
                                     files.write("a.sor", SorSketch::plain())},
                  changes);
        EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.err);
        return QImage(picture);
    }
};

TEST_F(LanguageOfTheSystem, IsSpokenUnlessAnotherIsNamed)
{
    const QImage english = window({}, {"--language", "en"});
    const QImage russian = window({}, {"--language", "ru"});
    ASSERT_NE(english, russian);
    EXPECT_EQ(window({{"LC_ALL", "ru_RU.UTF-8"}}), russian);
    EXPECT_EQ(window({{"LANG", "ru_RU.UTF-8"}}), russian);
    EXPECT_EQ(window({{"LANG", "en_GB.UTF-8"}, {"LANGUAGE", "xx:ru"}, {"LC_NUMERIC", "ru_RU"}}),
              russian);
    EXPECT_EQ(window({{"LANG", "en_US.UTF-8"}}), english);
    EXPECT_EQ(window({{"LC_ALL", "ru_RU.UTF-8"}}, {"--language", "en"}), english);
}

TEST_F(LanguageOfTheSystem, IsEnglishWhereThereIsNone)
{
    const QImage english = window({}, {"--language", "en"});
    EXPECT_EQ(window({}), english);
    for (const char* none : {"C", "POSIX", "C.UTF-8"}) {
        EXPECT_EQ(window({{"LC_ALL", none}, {"LANGUAGE", "ru"}}), english) << none;
    }
}

TEST_F(LanguageOfTheSystem, MayHaveOtherNumbersThanWords)
{
    const QImage german = window({{"LC_ALL", "de_DE.UTF-8"}});
    EXPECT_NE(german, window({}, {"--language", "en"})) << "without a comma";
    EXPECT_NE(german, window({}, {"--language", "ru"})) << "in Russian";
    EXPECT_EQ(window({{"LANG", "en_US.UTF-8"}, {"LC_NUMERIC", "de_DE.UTF-8"}}), german);
}

} // namespace
