// The translations in data/translations against the sources.

#include "tests/support/requiredcontents.h"
#include "tests/translations/shownliterals.h"
#include "tests/translations/translationfile.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace {

using namespace testing_support; // what reads translations and sources

using testing::IsEmpty;

const QStringList kFolders = QString(WAVEFORM_TRANSLATED).split(' ');

QStringList translationFiles()
{
    QStringList paths;
    const QDir dir(QString(WAVEFORM_SOURCES) + "/data/translations");
    for (const QString& name : dir.entryList({"waveform_*.ts"})) {
        paths << dir.filePath(name);
    }
    return paths;
}

/// A translation in which one text stands so.
QStringList faults(const QString& source, const QString& translation, const QString& type = {})
{
    const QString xml = QString("<TS><context><name>A</name><message><source>%1</source>"
                                "<translation%3>%2</translation></message></context></TS>")
                            .arg(source.toHtmlEscaped(), translation.toHtmlEscaped(),
                                 type.isEmpty() ? QString() : " type=\"" + type + "\"");
    return faultsOf(messagesOf(xml.toUtf8()));
}

class TranslationsOfTheSources : public testing::Test
{
protected:
    void SetUp() override
    {
        if (QString(WAVEFORM_LUPDATE).isEmpty()) {
            GTEST_SKIP() << "lupdate is not installed (package qttools5-dev-tools)";
        }
    }

    /// What a translation becomes when the texts of the sources are looked up for it.
    QByteArray updated(const QString& translation)
    {
        const QTemporaryDir dir;
        const QString copy = dir.filePath("copy.ts");
        EXPECT_TRUE(QFile::copy(translation, copy));
        QProcess lupdate;
        lupdate.setWorkingDirectory(WAVEFORM_SOURCES);
        lupdate.start(WAVEFORM_LUPDATE,
                      QStringList {"-silent", "-no-recursive"} + kFolders
                          + QStringList {"-I", ".", "-locations", "none", "-ts", copy});
        EXPECT_TRUE(lupdate.waitForFinished(60'000) && lupdate.exitCode() == 0);
        EXPECT_EQ(lupdate.readAllStandardError().toStdString(), "") << "a text that it cannot read";
        return requiredContents(copy);
    }
};

TEST_F(TranslationsOfTheSources, AreThereFinishedAndOfUse)
{
    ASSERT_FALSE(translationFiles().isEmpty());
    for (const QString& path : translationFiles()) {
        const QVector<Message> messages = messagesOf(updated(path));
        EXPECT_GT(messages.size(), 150) << "the sources were not looked at";
        EXPECT_THAT(faultsOf(messages).join('\n').toStdString(), IsEmpty()) << qPrintable(path);
    }
}

TEST(Translation, WithoutWordsOrUnfinishedOrWithoutUseIsAFault)
{
    EXPECT_THAT(faults("Load", "Открыть"), IsEmpty());
    EXPECT_THAT(faults("Load", ""), testing::SizeIs(1));
    EXPECT_THAT(faults("Load", "Открыть", "unfinished"), testing::SizeIs(1));
    EXPECT_THAT(faults("Load", "Открыть", "obsolete"), testing::SizeIs(1));
    EXPECT_THAT(faults("Load", "Открыть", "vanished"), testing::SizeIs(1));
}

TEST(Translation, HasThePlacesOfItsSource)
{
    EXPECT_THAT(faults("%1 of %2", "из %2 %1"), IsEmpty());
    EXPECT_THAT(faults("%1 of %2", "%1 из 2"), testing::SizeIs(1));
    EXPECT_THAT(faults("%1 of %2", "%1 из %1"), testing::SizeIs(1));
    EXPECT_THAT(faults("%5 and %5", "%5"), testing::SizeIs(1));
    EXPECT_THAT(faults("100 %", "100 %1"), testing::SizeIs(1));
}

TEST(Translation, HasAShortcutWhereItsSourceHas)
{
    EXPECT_THAT(faults("&Load", "&Открыть"), IsEmpty());
    EXPECT_THAT(faults("&Load", "Открыть"), testing::SizeIs(1));
    EXPECT_THAT(faults("Load", "&Открыть"), testing::SizeIs(1));
    EXPECT_THAT(faults("You && I", "Вы && я"), IsEmpty());
}

TEST(Translation, HasTheBlanksOfItsSourceAtItsEnds)
{
    EXPECT_THAT(faults("Loss: ", "Потери: "), IsEmpty());
    EXPECT_THAT(faults("Loss: ", "Потери:"), testing::SizeIs(1));
    EXPECT_THAT(faults(" dB", "дБ"), testing::SizeIs(1));
    EXPECT_THAT(faults("To:\n", "Куда:"), testing::SizeIs(1));
}

TEST(TextsOfTheSources, AreAllLookedUp)
{
    int looked = 0;
    for (const QString& folder : kFolders) {
        QDirIterator files(QString(WAVEFORM_SOURCES) + "/" + folder, {"*.cpp", "*.h"}, QDir::Files);
        while (files.hasNext()) {
            const QString path = files.next();
            ++looked;
            EXPECT_THAT(shownLiterals(requiredContents(path)).join('\n').toStdString(), IsEmpty())
                << qPrintable(path);
        }
    }
    EXPECT_GT(looked, 100);
}

TEST(TextsOfTheSources, AreSeenWhereTheyAreNotLookedUp)
{
    const auto found = [](const char* source) { return !shownLiterals(source).isEmpty(); };
    EXPECT_TRUE(found(R"(label->setText("Ready");)"));
    EXPECT_TRUE(found(R"(label->setText(ok ? tr("Ready") : QString("Failed"));)"));
    EXPECT_TRUE(found(R"(auto* label = new QLabel("Ready", this);)"));
    EXPECT_TRUE(found(R"(QMessageBox box(QMessageBox::Critical, tr("Waveform"), "Failed");)"));
    EXPECT_TRUE(found("button->setToolTip(\n    \"Opens a file\");"));
    EXPECT_FALSE(found(R"(label->setText(tr("Ready"));)"));
    EXPECT_FALSE(found(R"(label->setText(QCoreApplication::translate("Units", "nm") + "\n");)"));
    EXPECT_FALSE(found(R"(label->setText(tr("(%1) left").arg("-"));)"));
    EXPECT_FALSE(found(R"(button->setObjectName("loadButton");)"));
    EXPECT_FALSE(found(R"(label->setText(isKnown ? text : QString("-"));)"));
}

} // namespace
