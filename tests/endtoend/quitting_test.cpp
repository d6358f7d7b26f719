// The end of the application, at any time: nothing is said on the console and nothing stays behind.

#include "tests/endtoend/useratthescreen.h"

#include <QDir>

namespace {

using namespace testing_support; // the fixture and builders

/// The processes of these programs that were started with a path below a directory.
QStringList childrenIn(const QString& dir)
{
    QStringList found;
    const QStringList processes = QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& process : processes) {
        QFile commandLine(QString("/proc/%1/cmdline").arg(process));
        if (!commandLine.open(QIODevice::ReadOnly)) {
            continue; // it has ended meanwhile, or is no process
        }
        const QByteArray text = commandLine.readAll();
        if (text.contains("/wfgather\0") && text.contains(QFile::encodeName(dir))) {
            found << QString::fromUtf8(text).replace(QChar('\0'), ' ');
        }
    }
    return found;
}

class UserWhoLeaves : public UserAtTheScreen
{
protected:
    /// A run of a minute, of which a first trace has come.
    void measureForAWhile()
    {
        start({"--time-scale", "1", "--duration", "60"});
        tapNamed("actionButton");
        waitUntil([this] { return plot().curves() == 1; }, "a trace is shown");
        ASSERT_FALSE(childrenIn(directory.path()).isEmpty());
    }
};

TEST_F(UserWhoLeaves, AtOnce)
{
    ASSERT_NO_FATAL_FAILURE(start({}));
    ASSERT_NO_FATAL_FAILURE(quit());
}

TEST_F(UserWhoLeaves, WithATraceOnTheScreen)
{
    ASSERT_NO_FATAL_FAILURE(start({files.write("a.sor", SorSketch::plain())}));
    waitUntil([this] { return plot().curves() == 1; }, "the trace is shown");
    ASSERT_NO_FATAL_FAILURE(quit());
}

TEST_F(UserWhoLeaves, InTheMiddleOfARun)
{
    ASSERT_NO_FATAL_FAILURE(measureForAWhile());
    ASSERT_NO_FATAL_FAILURE(quit());
    EXPECT_EQ(childrenIn(directory.path()), QStringList());
}

TEST_F(UserWhoLeaves, InTheMiddleOfARunThatWasJustStopped)
{
    ASSERT_NO_FATAL_FAILURE(measureForAWhile());
    ASSERT_NO_FATAL_FAILURE(tapNamed("actionButton"));
    ASSERT_NO_FATAL_FAILURE(quit());
    EXPECT_EQ(childrenIn(directory.path()), QStringList());
}

TEST_F(UserWhoLeaves, FindsTheRunInPlaceOfTheOneThatWasLeft)
{
    ASSERT_NO_FATAL_FAILURE(measureForAWhile());
    ASSERT_NO_FATAL_FAILURE(quit());
    ASSERT_NO_FATAL_FAILURE(start({"--time-scale", "0"}));
    ASSERT_NO_FATAL_FAILURE(tapNamed("actionButton"));
    waitUntil([this] { return named("saveButton").isEnabled(); }, "a whole run");
    ASSERT_NO_FATAL_FAILURE(quit());
}

} // namespace
