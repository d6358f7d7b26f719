#include "app/help.h"
#include "app/libraries.h"
#include "app/textdialog.h"
#include "platform/launcher/abstractkeeper.h"
#include "platform/launcher/nameprompt.h"
#include "tests/app/hosting.h"

#include <QScrollBar>
#include <QTextBrowser>
#include <QTextCursor>
#include <QTextDocument>

namespace {

using namespace testing_support; // the fixture

/// Gives no name.
class Refusal : public NamePrompt
{
public:
    std::optional<QString> askName(const QString& /*proposed*/) override { return std::nullopt; }

    bool askOverwrite(const QString& /*name*/) override { return false; }
};

class Help : public Hosting
{
protected:
    TextDialog* page(const QString& name = "help") const
    {
        for (TextDialog* dialog : host->frame()->findChildren<TextDialog*>(name)) {
            if (dialog->isVisible()) {
                return dialog;
            }
        }
        return nullptr;
    }
};

TEST_F(Help, ComesByItsKeyAndGoesByEscape)
{
    load();
    QTest::keyClick(host->frame(), Qt::Key_F1);
    ASSERT_NE(page(), nullptr);
    QTest::keyClick(page(), Qt::Key_Escape);
    EXPECT_EQ(page(), nullptr);
    QTest::keyClick(host->frame(), Qt::Key_F1);
    EXPECT_NE(page(), nullptr) << "it comes once only";
}

TEST_F(Help, KeyIsHeardWhereverTheFocusIs)
{
    load();
    for (QWidget* widget :
         {static_cast<QWidget*>(action()), static_cast<QWidget*>(button("loadButton"))}) {
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_F1);
        ASSERT_NE(page(), nullptr);
        page()->close();
    }
}

TEST_F(Help, ComesByItsButtonToo)
{
    load();
    ASSERT_NE(button("helpButton"), nullptr);
    EXPECT_GE(button("helpButton")->height(), 44);
    QTest::mouseClick(button("helpButton"), Qt::LeftButton);
    ASSERT_NE(page(), nullptr);
    QTest::mouseClick(page()->findChild<QPushButton*>("closeButton"), Qt::LeftButton);
    EXPECT_EQ(page(), nullptr);
}

TEST_F(Help, FitsTheInstrumentAndScrollsByKeys)
{
    load();
    QTest::keyClick(host->frame(), Qt::Key_F1);
    ASSERT_NE(page(), nullptr);
    EXPECT_LE(page()->width(), 800);
    EXPECT_LE(page()->height(), 480);
    auto* text = page()->findChild<QTextBrowser*>();
    EXPECT_EQ(text->horizontalScrollBar()->maximum(), 0) << "lines are too long for the page";
    EXPECT_EQ(page()->focusWidget(), text) << "the keys go elsewhere";
    QTest::keyClick(text, Qt::Key_PageDown);
    EXPECT_EQ(text->verticalScrollBar()->value() > 0, text->verticalScrollBar()->maximum() > 0);
}

TEST_F(Help, TellsHowAMarkerIsChosenBeforeWhatMovesIt)
{
    load();
    const int choosing = help::page().indexOf("Very short tap on A or B");
    EXPECT_GE(choosing, 0);
    EXPECT_LT(choosing, help::page().indexOf("move the chosen marker"));
}

TEST_F(Help, WhatOneLooksForIsBoldAndWhatIsSaidOfItIsNot)
{
    load();
    QTextDocument document;
    document.setHtml(help::page());
    const QTextCursor looked = document.find("Open traces");
    const QTextCursor said = document.find("drop .sor files");
    ASSERT_FALSE(looked.isNull());
    ASSERT_FALSE(said.isNull());
    EXPECT_GE(looked.charFormat().fontWeight(), QFont::Bold);
    EXPECT_LT(said.charFormat().fontWeight(), QFont::Bold);
}

TEST_F(Help, NamesTheButtonThatEndsARunByWhereItIs)
{
    load();
    EXPECT_TRUE(help::page().contains("the same button ends it early"));
    EXPECT_FALSE(help::page().contains("Stop")) << "in a run the time stands on the button";
}

TEST_F(Help, TellsWhereFilesGo)
{
    load();
    EXPECT_TRUE(help::page().contains(files.path("home/otdr")));
    EXPECT_TRUE(help::page().contains(config.path()));
    ZuConfig("zu-launcher", "paths", "otdr").store("a<b");
    EXPECT_TRUE(help::page().contains("a&lt;b")) << "a name is taken for markup";
}

TEST_F(Help, LeadsToWhatTheApplicationIs)
{
    load();
    QTest::keyClick(host->frame(), Qt::Key_F1);
    ASSERT_NE(page(), nullptr);
    QTest::mouseClick(page()->findChild<QPushButton*>("aboutButton"), Qt::LeftButton);
    ASSERT_NE(page("about"), nullptr);
    QTest::keyClick(page("about"), Qt::Key_Escape);
    EXPECT_EQ(page("about"), nullptr);
    EXPECT_NE(page(), nullptr) << "Escape closes one page at a time";
}

TEST_F(Help, NamesTheLibrariesInTheVersionsThatAreLoaded)
{
    load(); // with the plugin, which brings the chart
    const QVector<Library> all = libraries();
    QStringList loaded;
    for (const Library& library : all) {
        EXPECT_FALSE(library.licence.isEmpty()) << qPrintable(library.name);
        EXPECT_TRUE(help::about().contains(library.name.toHtmlEscaped()));
        if (!library.version.isEmpty()) {
            loaded << library.name;
            EXPECT_TRUE(help::about().contains(library.name + ' ' + library.version));
        }
    }
    EXPECT_THAT(loaded, testing::IsSupersetOf({"Qt", "Qwt", "libstdc++"}));
    EXPECT_EQ(all.first().version, qVersion());
}

TEST(LibraryVersion, IsTheEndOfItsFileName)
{
    EXPECT_EQ(versionInName("libqwt-qt5.so.6.1.4"), "6.1.4");
    EXPECT_EQ(versionInName("libexample-2.36.so"), "2.36");
    EXPECT_EQ(versionInName("libexample.so"), "");
    EXPECT_EQ(versionInName("libexample.so.6.old"), "");
}

TEST_F(Help, KeyOfTheDesktopLeaves)
{
    load();
    QTest::keyClick(host->frame(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_FALSE(host->frame()->isVisible());
}

TEST_F(Help, KeyOfTheDesktopSaves)
{
    load();
    ASSERT_TRUE(host->open({files.write("a.sor", SorSketch::plain())}).isEmpty());
    QSignalSpy saved(button("saveButton"), &QPushButton::clicked);
    host->keeper()->setNamePrompt(std::make_unique<Refusal>());
    QTest::keyClick(action(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(saved.size(), 1);
}

} // namespace
