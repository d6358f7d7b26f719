#include "platform/otdr/core/atomicfile.h"
#include "tests/support/sorsketch.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

namespace fs = std::filesystem;
using otdr::ErrorCode;
using otdr::writeFileAtomically;
using testing_support::Bytes;

Bytes bytesOfText(const std::string& text)
{
    return testing_support::ByteSketch().text(text).done;
}

class AtomicFile : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "atomicfile-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
    }

    void TearDown() override { fs::remove_all(directory); }

    [[nodiscard]] std::string at(const std::string& name) const
    {
        return (directory / name).string();
    }

    [[nodiscard]] std::string contents(const std::string& name) const
    {
        std::ifstream file(at(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    [[nodiscard]] std::ptrdiff_t entries() const
    {
        return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
    }

    fs::path directory;
};

/// No file of this process may grow beyond so many bytes while this lives: a full disk, as far as
/// one can tell.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &before);
        rlimit small = before;
        small.rlim_cur = bytes;
        signalBefore = std::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &small);
    }

    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, signalBefore);
    }

    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit before {};
    void (*signalBefore)(int) = nullptr;
};

/// Where nobody reads, a program may have no standard input: the next file that is opened has its
/// number, 0.
TEST_F(AtomicFile, IsClosedAfterAFailureWhateverItsNumber)
{
    const int input = ::fcntl(0, F_DUPFD_CLOEXEC, 10);
    ASSERT_GE(input, 10);
    ::close(0);
    {
        const FullDisk full(1000);
        EXPECT_FALSE(writeFileAtomically(at("new"), Bytes(5000)).ok());
    }
    const bool isClosed = ::fcntl(0, F_GETFD) < 0;
    ::dup2(input, 0);
    ::close(input);
    EXPECT_TRUE(isClosed);
    EXPECT_EQ(entries(), 0);
}

TEST_F(AtomicFile, WritesANewFile)
{
    const auto written = writeFileAtomically(at("new"), bytesOfText("trace"));
    ASSERT_TRUE(written.ok());
    EXPECT_EQ(*written, 5U);
    EXPECT_EQ(contents("new"), "trace");
    EXPECT_EQ(entries(), 1);
}

TEST_F(AtomicFile, ReplacesAFileAndKeepsItsPermissions)
{
    ASSERT_TRUE(writeFileAtomically(at("old"), bytesOfText("a longer one")).ok());
    fs::permissions(at("old"),
                    fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    ASSERT_TRUE(writeFileAtomically(at("old"), bytesOfText("short")).ok());
    EXPECT_EQ(contents("old"), "short");
    EXPECT_EQ(fs::status(at("old")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST_F(AtomicFile, GivesANewFileThePermissionsOfTheUser)
{
    const mode_t before = ::umask(027);
    ASSERT_TRUE(writeFileAtomically(at("new"), bytesOfText("x")).ok());
    ::umask(before);
    EXPECT_EQ(static_cast<unsigned>(fs::status(at("new")).permissions()), 0640U);
}

TEST_F(AtomicFile, WritesAnEmptyFile)
{
    ASSERT_TRUE(writeFileAtomically(at("empty"), {}).ok());
    EXPECT_TRUE(fs::exists(at("empty")));
    EXPECT_EQ(fs::file_size(at("empty")), 0U);
}

TEST_F(AtomicFile, FollowsALink)
{
    ASSERT_TRUE(writeFileAtomically(at("real"), bytesOfText("old")).ok());
    fs::create_symlink("real", directory / "link");
    ASSERT_TRUE(writeFileAtomically(at("link"), bytesOfText("new")).ok());
    EXPECT_TRUE(fs::is_symlink(directory / "link"));
    EXPECT_EQ(contents("real"), "new");
}

TEST_F(AtomicFile, TakesANameAsLongAsANameCanBe)
{
    const std::string name(255, 'n');
    ASSERT_TRUE(writeFileAtomically(at(name), bytesOfText("x")).ok());
    EXPECT_EQ(contents(name), "x");
}

TEST_F(AtomicFile, LeavesTheOldFileWholeWhenTheDiskIsFull)
{
    ASSERT_TRUE(writeFileAtomically(at("kept"), bytesOfText("what was there")).ok());
    {
        const FullDisk full(1000);
        const auto written = writeFileAtomically(at("kept"), Bytes(5000));
        ASSERT_FALSE(written.ok());
        EXPECT_EQ(written.error().code, ErrorCode::CannotWrite);
    }
    EXPECT_EQ(contents("kept"), "what was there");
    EXPECT_EQ(entries(), 1);
}

TEST_F(AtomicFile, NamesTheFileThatCannotBeWritten)
{
    const auto written = writeFileAtomically(at("no/such/directory"), bytesOfText("x"));
    ASSERT_FALSE(written.ok());
    EXPECT_EQ(written.error().code, ErrorCode::CannotWrite);
    EXPECT_THAT(written.error().message, testing::HasSubstr("no/such/directory"));
}

TEST_F(AtomicFile, RefusesWhatIsNotARegularFile)
{
    fs::create_directory(directory / "folder");
    EXPECT_FALSE(writeFileAtomically(at("folder"), bytesOfText("x")).ok());
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(writeFileAtomically(at("pipe"), bytesOfText("x")).ok());
    EXPECT_FALSE(writeFileAtomically("", bytesOfText("x")).ok());
    EXPECT_EQ(entries(), 2);
}

/// The number of a process that has ended.
pid_t goneProcess()
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    EXPECT_EQ(::waitpid(child, nullptr, 0), child);
    return child;
}

class Leftovers : public AtomicFile
{
protected:
    void make(const std::string& name) const { std::ofstream(at(name)) << "half"; }

    [[nodiscard]] bool isThere(const std::string& name) const
    {
        return fs::symlink_status(at(name)).type() != fs::file_type::not_found;
    }

    std::string gone = ".waveform-" + std::to_string(goneProcess());
};

TEST_F(Leftovers, OfAKilledProgramAreRemoved)
{
    make(gone + "-0");
    make(gone + "-4294967295");
    otdr::removeLeftovers(directory.string());
    EXPECT_EQ(entries(), 0);
}

TEST_F(Leftovers, OfAProgramThatRunsStay)
{
    const std::string name = ".waveform-" + std::to_string(::getppid()) + "-0";
    make(name);
    otdr::removeLeftovers(directory.string());
    EXPECT_TRUE(isThere(name));
}

TEST_F(Leftovers, OfAnEarlierProcessWithOurNumberAreRemovedAndOurOwnStay)
{
    ASSERT_TRUE(writeFileAtomically(at("trace"), bytesOfText("x")).ok()); // number 0 is used by now
    const std::string own = ".waveform-" + std::to_string(::getpid());
    make(own + "-0");
    make(own + "-4000000000");
    otdr::removeLeftovers(directory.string());
    EXPECT_TRUE(isThere(own + "-0"));
    EXPECT_FALSE(isThere(own + "-4000000000"));
}

TEST_F(Leftovers, WithOtherNamesStay)
{
    const std::vector<std::string> names {"trace.sor",
                                          ".waveform",
                                          ".waveform-",
                                          ".waveform--5-0",
                                          gone,
                                          gone + "-",
                                          gone + "-0.sor",
                                          gone + "-00",
                                          gone + "-+1",
                                          gone + "- 1",
                                          gone + "-x",
                                          gone.substr(1) + "-0",
                                          "a" + gone + "-0",
                                          ".waveform-99999999999999999999-0"};
    for (const std::string& name : names) {
        make(name);
    }
    otdr::removeLeftovers(directory.string());
    for (const std::string& name : names) {
        EXPECT_TRUE(isThere(name)) << name;
    }
}

TEST_F(Leftovers, ThatAreNoPlainFilesStay)
{
    make("trace.sor");
    fs::create_symlink("trace.sor", directory / (gone + "-0"));
    fs::create_directory(directory / (gone + "-1"));
    ASSERT_EQ(::mkfifo(at(gone + "-2").c_str(), 0600), 0);
    otdr::removeLeftovers(directory.string());
    EXPECT_EQ(entries(), 4);
}

TEST_F(Leftovers, OfAnotherUserStay)
{
    make(gone + "-0");
    if (::geteuid() != 0 || ::chown(at(gone + "-0").c_str(), 65534, 65534) != 0) {
        GTEST_SKIP() << "only the superuser can give a file away";
    }
    otdr::removeLeftovers(directory.string());
    EXPECT_TRUE(isThere(gone + "-0"));
}

TEST_F(Leftovers, WantADirectoryThatIsThere)
{
    otdr::removeLeftovers(at("no/such/directory"));
    make("trace.sor");
    otdr::removeLeftovers(at("trace.sor"));
    EXPECT_EQ(contents("trace.sor"), "half");
}

} // namespace
