// The application in another language than that of its sources.

#include "app/help.h"
#include "app/language.h"
#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/namedialog.h"
#include "platform/launcher/opendialog.h"
#include "platform/launcher/zuconfigmodel.h"
#include "tests/app/hosting.h"
#include "tests/platform/launcher/answer.h"
#include "tests/support/inlocale.h"
#include "tests/support/reach.h"

#include <QAbstractItemView>
#include <QDirIterator>
#include <QHeaderView>
#include <QLabel>
#include <QRegularExpression>
#include <QTableView>
#include <QTextBrowser>

namespace {

using namespace testing_support; // the fixture and what looks at windows

/// Words of the sources' language in a text: the product's name, file names and keys are none.
QStringList englishIn(QString text)
{
    static const QRegularExpression known(
        R"(Waveform|ORL|Ctrl\+[A-Z]|\bCAPS\b|\bShift\b|\bABC\b|[\w/.-]*/[\w/.-]+|\w*\.(sor|html)\b|\blink\w*\b)");
    static const QRegularExpression word("[A-Za-z]{2,}");
    text.remove(known);
    QStringList found;
    for (auto match = word.globalMatch(text); match.hasNext();) {
        found << match.next().captured();
    }
    return found;
}

QStringList textsOf(const QWidget& window)
{
    QStringList texts = {window.windowTitle()};
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        for (const char* property : {"text", "toolTip", "accessibleName", "windowTitle",
                                     "currentText", "placeholderText"}) {
            texts << widget->property(property).toString();
        }
    }
    for (const QTableView* table : window.findChildren<QTableView*>()) {
        for (int column = 0; column < table->model()->columnCount(); ++column) {
            texts << table->model()->headerData(column, Qt::Horizontal).toString();
        }
    }
    return texts;
}

class Russian : public Hosting
{
protected:
    void show()
    {
        load();
        ASSERT_TRUE(host->open({files.write("link.sor", SorSketch::plain())}).isEmpty());
        for (const char* title : {"Измерение", "События", "Рефлектограммы"}) {
            press(title);
        }
        QCoreApplication::processEvents();
    }

    void press(const QString& title) const
    {
        for (QPushButton* one : host->frame()->findChildren<QPushButton*>()) {
            if (one->text() == title && one->isVisible()) {
                QTest::mouseClick(one, Qt::LeftButton);
                return;
            }
        }
        ADD_FAILURE() << "there is no button " << qPrintable(title);
    }

    static void expectRussian(const QWidget& window)
    {
        for (const QString& text : textsOf(window)) {
            EXPECT_EQ(englishIn(text).join(' '), "") << qPrintable(text);
        }
    }

    QAbstractItemModel* table(const QString& name) const
    {
        return host->window()->findChild<QAbstractItemView*>(name)->model();
    }

    const InLocale inC {QLocale::c()};
    const Language language {"ru"};
};

TEST_F(Russian, WindowSpeaksIt)
{
    show();
    expectRussian(*host->frame());
    EXPECT_EQ(button("loadButton")->text(), "Открыть");
    EXPECT_EQ(action()->text(), "Старт");
}

TEST_F(Russian, NumbersHaveAComma)
{
    show();
    const QAbstractItemModel* events = table("events");
    const QAbstractItemModel* traces = table("reflectograms");
    EXPECT_EQ(events->index(0, 2).data().toString(), "0,00");
    EXPECT_TRUE(traces->index(0, 3).data().toString().contains(',')) << "the length";
    QStringList results;
    for (const QLabel* label : host->window()->findChildren<QLabel*>()) {
        results << label->text();
    }
    EXPECT_EQ(results.filter(QRegularExpression(R"(^\d+,\d м$)")).size(), 3) << "A, B, length";
    EXPECT_EQ(results.filter(QRegularExpression(R"(\d\.\d)")), QStringList());
}

TEST_F(Russian, EverythingFitsOnTheInstrumentsScreen)
{
    show();
    EXPECT_EQ(clippedTexts(*host->frame()), QStringList());
    press("Настройки");
    QCoreApplication::processEvents();
    EXPECT_EQ(clippedTexts(*host->frame()), QStringList());
    expectRussian(*host->frame());
}

TEST_F(Russian, HelpSpeaksItAndFits)
{
    show();
    help::show(host->frame());
    const auto* page = host->frame()->findChild<QTextBrowser*>();
    ASSERT_NE(page, nullptr);
    static const QRegularExpression keys(R"(\b(Page (Up|Down)|Ctrl|Tab|Enter|Escape)\b)");
    EXPECT_EQ(englishIn(page->toPlainText().remove(keys)).join(' '), "");
    EXPECT_TRUE(page->toPlainText().contains("рефлектограмма"));
    EXPECT_EQ(clippedTexts(*page->window()), QStringList());
}

TEST_F(Russian, DialogsOfFilesSpeakItAndFit)
{
    load();
    NameDialog name("link", host->frame());
    OpenDialog open(
        {"Открыть рефлектограмму", {{"Память прибора", files.path(".")}}, ".sor", 4, {}},
        host->frame());
    for (QDialog* dialog : {static_cast<QDialog*>(&name), static_cast<QDialog*>(&open)}) {
        dialog->show();
        QCoreApplication::processEvents();
        expectRussian(*dialog);
        EXPECT_EQ(clippedTexts(*dialog), QStringList());
        dialog->hide();
    }
    name.show();
    for (QPushButton* one : name.findChildren<QPushButton*>()) {
        if (one->text() == "АБВ" && one->isVisible()) {
            QTest::mouseClick(one, Qt::LeftButton);
            break;
        }
    }
    EXPECT_EQ(clippedTexts(name), QStringList()) << "its Cyrillic keys";
}

TEST_F(Russian, MessagesSpeakIt)
{
    load();
    const QString words = files.path("words.sor");
    QFile file(words);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(QByteArray(500, 'x')) == 500);
    file.close();
    host->tell(host->open({words}));
    EXPECT_TRUE(told().contains("это не файл рефлектограммы")) << qPrintable(told());
    EXPECT_EQ(englishIn(told()).join(' '), "");
}

TEST_F(Russian, MeasurementCountsDownAndSavesInIt)
{
    load();
    QStringList captions;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { captions << action()->text(); });
    timer.start(5);
    ASSERT_TRUE(measure());
    timer.stop();
    host->keeper()->setNamePrompt(std::make_unique<Answer>("link"));
    QTest::mouseClick(button("saveButton"), Qt::LeftButton);
    QCoreApplication::processEvents();
    EXPECT_TRUE(told().startsWith("Отчёты сохранены:\n")) << qPrintable(told());
    EXPECT_EQ(englishIn(told().remove("otdr")).join(' '), "");
    EXPECT_EQ(englishIn(captions.join(' ')).join(' '), "");
}

/// Names and contents of all files below a directory.
QMap<QString, QByteArray> contentsOf(const QString& dir)
{
    QMap<QString, QByteArray> contents;
    QDirIterator all(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (all.hasNext()) {
        QFile file(all.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        contents[QDir(dir).relativeFilePath(file.fileName())] = file.readAll();
    }
    return contents;
}

class SessionsInTwoLanguages : public Hosting
{
protected:
    /// What a session leaves: a trace in another version than its file's, its report, the
    /// configuration.
    QMap<QString, QByteArray> left(const QString& code, const QByteArray& locale)
    {
        const QByteArray before = qgetenv("LC_ALL");
        SorSketch older = SorSketch::plain();
        older.version = 1; // one of today would keep its bytes
        qputenv("LC_ALL", locale); // of the programs that it starts
        const Language language(code);
        load();
        EXPECT_TRUE(host->open({files.write("a.sor", older)}).isEmpty());
        auto* settings = ZuConfigModel::instance(nullptr, "zuotdr");
        settings->setting("helix", "MeasParams")->tryChange(QVariant(1.5));
        settings->setting("distance", "MeasParams")->tryChange(QVariant(2500));
        settings->freeLater();
        host->keeper()->setNamePrompt(std::make_unique<Answer>("link"));
        QTest::mouseClick(button("saveButton"), Qt::LeftButton);
        host.reset();
        auto contents = contentsOf(files.path("home"));
        const auto settingsFiles = contentsOf(config.path());
        for (auto it = settingsFiles.begin(); it != settingsFiles.end(); ++it) {
            contents["config/" + it.key()] = it.value();
        }
        QDir(files.path("home")).removeRecursively();
        QDir(config.path() + "/waveform").removeRecursively();
        before.isNull() ? qunsetenv("LC_ALL") : qputenv("LC_ALL", before);
        return contents;
    }

    const InLocale inC {QLocale::c()};
};

TEST_F(SessionsInTwoLanguages, LeaveTheSameBytes)
{
    const auto english = left("en", "C.UTF-8");
    const auto russian = left("ru", "ru_RU.UTF-8");
    EXPECT_EQ(russian.keys(), english.keys());
    EXPECT_TRUE(english.contains("otdr/link.sor"));
    EXPECT_TRUE(english.contains("otdr/link.html"));
    EXPECT_TRUE(english.contains("config/waveform/zuotdr.ini"));
    for (auto it = english.begin(); it != english.end(); ++it) {
        EXPECT_TRUE(russian.value(it.key()) == it.value()) << qPrintable(it.key());
    }
    const QByteArray plain = contentsOf(files.path(".")).value("a.sor");
    EXPECT_TRUE(english.value("otdr/link.sor") != plain) << "it was not written anew";
}

TEST_F(SessionsInTwoLanguages, MeasureTheSame)
{
    ZuConfig::setForThisRun("zuotdr", "Simulation", "seed", 7);
    QMap<QString, QStringList> measured;
    for (const char* code : {"en", "ru"}) {
        const Language language(code);
        load();
        ASSERT_TRUE(measure());
        host->keeper()->setNamePrompt(std::make_unique<Answer>("link"));
        QTest::mouseClick(button("saveButton"), Qt::LeftButton);
        const Reflectogram refl(files.path("home/otdr/link.sor"));
        ASSERT_TRUE(refl.isValid()) << code;
        measured[code] << refl.paramsToString();
        for (const Event& event : refl.getEventList()) {
            measured[code] << event.toString();
        }
        host.reset();
    }
    EXPECT_GT(measured["en"].size(), 3);
    EXPECT_EQ(measured["ru"], measured["en"]);
}

} // namespace
