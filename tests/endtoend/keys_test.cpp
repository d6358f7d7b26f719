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

} // namespace
