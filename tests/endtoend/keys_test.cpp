// Where nobody manages windows, keys go on after each dialog.

#include "tests/endtoend/useratthescreen.h"

namespace {

using namespace testing_support; // the fixture and builders

class UserWithKeys : public UserAtTheScreen
{
protected:
    [[nodiscard]] SeenWidget dialog(const char* className) { return ofClass(className); }

    /// Opens a dialog by its key and closes it again.
    void openAndClose(const char* key, const char* className)
    {
        ASSERT_FALSE(dialog(className).isThere());
        screen->key(key);
        waitUntil([&] { return dialog(className).isThere(); }, key);
        ASSERT_FALSE(HasFatalFailure());
        screen->key("Escape");
        waitUntil([&] { return !dialog(className).isThere(); }, "closed");
    }
};

TEST_F(UserWithKeys, OpensPageAfterPage)
{
    ASSERT_NO_FATAL_FAILURE(start({}));
    for (int times = 0; times < 2; ++times) {
        ASSERT_NO_FATAL_FAILURE(openAndClose("F1", "TextDialog"));
        ASSERT_NO_FATAL_FAILURE(openAndClose("ctrl+o", "OpenDialog"));
    }
    ASSERT_NO_FATAL_FAILURE(quit());
}

TEST_F(UserWithKeys, ClosesTheMessageAfterSavingByEnterAndPressesNothingBehindIt)
{
    ASSERT_NO_FATAL_FAILURE(start({files.write("a.sor", SorSketch::plain())}));
    waitUntil([this] { return named("saveButton").isEnabled(); }, "the trace is there");
    ASSERT_FALSE(HasFatalFailure());
    screen->key("ctrl+s");
    waitUntil([this] { return ofClass("QLineEdit").text() == "a"; }, "a name is proposed");
    ASSERT_FALSE(HasFatalFailure());
    screen->key("Return");
    waitUntil([this] { return isSaid("a.html"); }, "it is saved");
    ASSERT_FALSE(HasFatalFailure());
    screen->key("Return");
    waitUntil([this] { return !isSaid("a.html"); }, "the message is closed");
    EXPECT_FALSE(dialog("TextDialog").isThere());
    ASSERT_NO_FATAL_FAILURE(openAndClose("F1", "TextDialog")); // the keys go on
    ASSERT_NO_FATAL_FAILURE(quit());
}

TEST_F(UserWithKeys, ClosesAMessageOfTheStartByEscape)
{
    const QString bad = homePath("bad.sor");
    QFile file(bad);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no trace");
    file.close();
    ASSERT_NO_FATAL_FAILURE(start({bad}));
    waitUntil([this] { return inDialog("OK").isThere(); }, "a message");
    ASSERT_FALSE(HasFatalFailure());
    screen->key("Escape");
    waitUntil([this] { return !inDialog("OK").isThere(); }, "the message is closed");
    ASSERT_NO_FATAL_FAILURE(openAndClose("F1", "TextDialog"));
}

} // namespace
