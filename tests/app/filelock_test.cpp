#include "app/filelock.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace {

using LockOutcome = FileLock::Outcome;

class LockFile : public testing::Test
{
protected:
    const QTemporaryDir directory;
    const QString file = directory.filePath("lock");
};

TEST_F(LockFile, IsHeldByOneAtATime)
{
    FileLock first;
    FileLock second;
    EXPECT_EQ(first.take(file), LockOutcome::Taken);
    EXPECT_EQ(second.take(file), LockOutcome::HeldByOther);
    first.release();
    EXPECT_EQ(second.take(file), LockOutcome::Taken);
    EXPECT_EQ(first.take(file), LockOutcome::HeldByOther);
}

TEST_F(LockFile, IsLetGoOfWithItsHolder)
{
    {
        FileLock first;
        ASSERT_EQ(first.take(file), LockOutcome::Taken);
    }
    FileLock second;
    EXPECT_EQ(second.take(file), LockOutcome::Taken);
}

TEST_F(LockFile, IsFreeWhenItsProcessWasKilled)
{
    std::array<int, 2> ready {};
    ASSERT_EQ(::pipe(ready.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        FileLock lock;
        const char answer = lock.take(file) == LockOutcome::Taken ? 'y' : 'n';
        ::_exit(::write(ready[1], &answer, 1) == 1 && ::pause() == 0 ? 0 : 1);
    }
    char answer = ' ';
    ASSERT_EQ(::read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    FileLock lock;
    EXPECT_EQ(lock.take(file), LockOutcome::HeldByOther);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(lock.take(file), LockOutcome::Taken);
}

TEST_F(LockFile, IsNotInheritedByAChildProgram)
{
    QProcess child;
    {
        FileLock lock;
        ASSERT_EQ(lock.take(file), LockOutcome::Taken);
        child.start("sleep", {"60"});
        ASSERT_TRUE(child.waitForStarted());
    }
    FileLock lock;
    EXPECT_EQ(lock.take(file), LockOutcome::Taken);
    child.kill();
    child.waitForFinished();
}

TEST_F(LockFile, CannotBeWhereNoFileCan)
{
    FileLock lock;
    EXPECT_EQ(lock.take(directory.filePath("missing/lock")), LockOutcome::NoFile);
    EXPECT_EQ(lock.take(directory.path()), LockOutcome::NoFile);
}

TEST_F(LockFile, IsNoLinkToAnotherFile)
{
    const QString other = directory.filePath("other");
    ASSERT_TRUE(QFile::link(other, file));
    FileLock lock;
    EXPECT_EQ(lock.take(file), LockOutcome::NoFile);
    EXPECT_FALSE(QFile::exists(other));
}

} // namespace
