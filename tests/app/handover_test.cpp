#include "app/filename.h"
#include "app/handover.h"
#include "app/openrequests.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QtConcurrent>
#include <QTemporaryDir>
#include <QtTest>

#include <gmock/gmock.h>

namespace {

using namespace std::chrono_literals;

const QStringList kFiles = {"/a b/c.sor", filename::fromRaw("/tmp/\xFF\xFE\n.sor")};

TEST(HandOverMessage, BringsTheFilesInTheirOrder)
{
    EXPECT_EQ(handover::files(handover::message(kFiles)), kFiles);
    EXPECT_EQ(handover::files(handover::message({})), QStringList());
    EXPECT_EQ(handover::files(handover::message({"", "/a.sor"})), QStringList {"/a.sor"});
}

TEST(HandOverMessage, ThatIsCutSaysNothing)
{
    const QByteArray whole = handover::message(kFiles);
    for (int length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(handover::files(whole.left(length))) << length;
        EXPECT_FALSE(handover::isComplete(whole.left(length))) << length;
    }
}

TEST(HandOverMessage, OfAnotherKindIsRefused)
{
    EXPECT_FALSE(handover::files(QByteArray("something else\0/a.sor\0\0", 23)));
    EXPECT_FALSE(handover::files(QByteArray(2, '\0')));
    EXPECT_FALSE(handover::files(QByteArray(handover::kMostBytes, 'x') + handover::message({})));
}

class HandingOver : public testing::Test
{
protected:
    [[nodiscard]] QString address() const { return handover::address(dir.path()); }

    /// Sends as another process would, while the events of this one go on.
    bool send(const QStringList& files)
    {
        const auto sent =
            QtConcurrent::run([this, files] { return handover::send(address(), files, 10s); });
        EXPECT_TRUE(QTest::qWaitFor([&] { return sent.isFinished(); }, 20'000));
        return sent.result();
    }

    const QTemporaryDir dir;
    OpenRequests requests;
    QSignalSpy requested {&requests, &OpenRequests::requested};
};

TEST_F(HandingOver, BringsTheFilesToWhoListens)
{
    ASSERT_EQ(requests.listen(address()), "");
    ASSERT_TRUE(send(kFiles));
    ASSERT_EQ(requested.size(), 1);
    EXPECT_EQ(requested.first().first().toStringList(), kFiles);
    EXPECT_TRUE(send({}));
    EXPECT_EQ(requested.size(), 2) << "a start without files is one, too";
}

TEST_F(HandingOver, WaitsForOneThatIsStillStarting)
{
    const auto sent = QtConcurrent::run([this] { return handover::send(address(), kFiles, 10s); });
    QTest::qWait(200);
    ASSERT_EQ(requests.listen(address()), "");
    EXPECT_TRUE(QTest::qWaitFor([&] { return sent.isFinished(); }, 20'000));
    EXPECT_TRUE(sent.result());
}

TEST_F(HandingOver, GivesUpWhereNobodyListens)
{
    EXPECT_FALSE(handover::send(address(), kFiles, 200ms));
}

TEST_F(HandingOver, GivesUpWhereNobodyAnswers)
{
    QLocalServer silent;
    ASSERT_TRUE(silent.listen(address()));
    EXPECT_FALSE(handover::send(address(), kFiles, 200ms)); // no event is handled meanwhile
}

TEST_F(HandingOver, TakesThePlaceOfOneThatCrashed)
{
    QFile left(address());
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    left.close();
    ASSERT_EQ(requests.listen(address()), "");
    EXPECT_TRUE(send(kFiles));
}

TEST_F(HandingOver, SaysWhereItCannotListen)
{
    EXPECT_NE(requests.listen(dir.filePath("missing/waveform.socket")), "");
}

TEST_F(HandingOver, StrangersDoNotDisturbIt)
{
    ASSERT_EQ(requests.listen(address()), "");
    for (const QByteArray& noise :
         {QByteArray("\0\0", 2), QByteArray("hello"), QByteArray(2 * handover::kMostBytes, 'x')}) {
        QLocalSocket stranger;
        stranger.connectToServer(address());
        stranger.write(noise);
        stranger.flush();
        QTest::qWait(20);
    }
    EXPECT_TRUE(requested.isEmpty());
    EXPECT_TRUE(send(kFiles));
    EXPECT_EQ(requested.size(), 1);
}

TEST_F(HandingOver, ComesInSingleBytes)
{
    ASSERT_EQ(requests.listen(address()), "");
    QLocalSocket slow;
    slow.connectToServer(address());
    for (const char byte : handover::message(kFiles)) {
        slow.write(&byte, 1);
        slow.flush();
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return !requested.isEmpty(); }));
    EXPECT_EQ(requested.first().first().toStringList(), kFiles);
}

} // namespace
