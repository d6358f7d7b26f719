#include "app/localsocket.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>

namespace {

using namespace std::chrono_literals;
using Got = LocalSocket::Got;

class LocalSockets : public testing::Test
{
protected:
    [[nodiscard]] QString address() const { return dir.filePath("ear"); }

    const QTemporaryDir dir;
    LocalSocket ear = LocalSocket::listenAt(address());
    LocalSocket caller = LocalSocket::connectTo(address(), 5s);
    LocalSocket called = ear.accept();
    QByteArray bytes;
};

TEST_F(LocalSockets, BringBytesBothWays)
{
    ASSERT_TRUE(ear.isOpen() && caller.isOpen() && called.isOpen());
    ASSERT_TRUE(caller.write("to you"));
    EXPECT_EQ(called.read(bytes, 100), Got::Bytes);
    EXPECT_EQ(bytes, "to you");
    ASSERT_TRUE(called.write("and back"));
    EXPECT_EQ(caller.read(bytes, 100), Got::Bytes);
    EXPECT_EQ(bytes, "to youand back") << "added to what was there";
}

TEST_F(LocalSockets, ReadNoMoreThanAsked)
{
    ASSERT_TRUE(caller.write("abcdef"));
    EXPECT_EQ(called.read(bytes, 4), Got::Bytes);
    EXPECT_EQ(bytes, "abcd");
}

TEST_F(LocalSockets, TellSilenceFromTheEnd)
{
    EXPECT_EQ(called.read(bytes, 10), Got::NothingYet);
    EXPECT_FALSE(ear.accept().isOpen()) << "nobody else called";
    caller = LocalSocket();
    EXPECT_EQ(called.read(bytes, 10), Got::End);
    EXPECT_EQ(bytes, "");
}

TEST_F(LocalSockets, DoNotWriteToOneThatHasGone)
{
    called = LocalSocket();
    EXPECT_FALSE(caller.write("hello")); // nor does a signal end this program
}

TEST_F(LocalSockets, LosePatience)
{
    caller.setPatience(20ms);
    EXPECT_EQ(caller.read(bytes, 10), Got::NothingYet);
    EXPECT_FALSE(caller.write(QByteArray(10'000'000, 'x'))) << "nobody reads it";
}

TEST(LocalSocketAddress, WhereNobodyListensIsNotReached)
{
    const QTemporaryDir dir;
    EXPECT_FALSE(LocalSocket::connectTo(dir.filePath("nobody"), 1s).isOpen());
    EXPECT_EQ(errno, ENOENT);
}

TEST(LocalSocketAddress, ThatIsTooLongIsRefused)
{
    const QTemporaryDir dir;
    EXPECT_FALSE(LocalSocket::listenAt(dir.filePath(QString(120, 'a'))).isOpen());
    EXPECT_EQ(errno, ENAMETOOLONG);
    EXPECT_FALSE(LocalSocket::connectTo(dir.filePath(QString(120, 'a')), 1s).isOpen());
}

TEST(LocalSocketAddress, ThatIsTakenIsRefused)
{
    const QTemporaryDir dir;
    const LocalSocket first = LocalSocket::listenAt(dir.filePath("ear"));
    ASSERT_TRUE(first.isOpen());
    EXPECT_FALSE(LocalSocket::listenAt(dir.filePath("ear")).isOpen());
    EXPECT_EQ(errno, EADDRINUSE);
}

} // namespace
