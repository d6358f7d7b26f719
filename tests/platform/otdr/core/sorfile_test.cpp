#include "platform/otdr/core/sorreader.h"
#include "tests/platform/otdr/core/sorreading.h"
#include "tests/support/sorsketch.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using otdr::ErrorCode;
using otdr::readSorFile;
using testing::HasSubstr;
using testing_support::Bytes;
using testing_support::ByteSketch;
using testing_support::codeOf;
using testing_support::SorSketch;

class SorFile : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "sorfile-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        directory = name;
    }

    void TearDown() override { fs::remove_all(directory); }

    std::string write(const std::string& name, const Bytes& bytes) const
    {
        std::ofstream(directory / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return (directory / name).string();
    }

    fs::path directory;
};

TEST_F(SorFile, IsReadAsItsBytesAre)
{
    const auto file = readSorFile(write("good.sor", SorSketch::plain().build()));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(*file->bytes, SorSketch::plain().build());
    EXPECT_EQ(file->data.samples.size(), 4000U);
}

TEST_F(SorFile, IsRefusedWithItsNameAndTheReason)
{
    const auto missing = readSorFile((directory / "missing.sor").string());
    EXPECT_EQ(codeOf(missing), ErrorCode::CannotOpen);
    EXPECT_THAT(missing.error().message, HasSubstr("missing.sor: No such file"));
    EXPECT_EQ(codeOf(readSorFile(directory.string())), ErrorCode::CannotOpen);
    EXPECT_EQ(codeOf(readSorFile("")), ErrorCode::CannotOpen);
    EXPECT_EQ(codeOf(readSorFile(write("empty.sor", {}))), ErrorCode::NotATrace);
    const auto text = readSorFile(write("text.sor", ByteSketch().text("just some words\n").done));
    EXPECT_EQ(codeOf(text), ErrorCode::NotATrace);
    EXPECT_THAT(text.error().message, HasSubstr("text.sor: not a trace file"));
}

TEST_F(SorFile, IsNotWaitedForWhereItIsAPipe)
{
    const std::string pipe = (directory / "pipe").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(codeOf(readSorFile(pipe)), ErrorCode::CannotOpen);
    EXPECT_EQ(codeOf(readSorFile("/dev/zero")), ErrorCode::CannotOpen);
}

TEST_F(SorFile, IsRefusedAbove64MiBBeforeItIsRead)
{
    const std::string path = write("large.sor", SorSketch::plain().build());
    fs::resize_file(path, otdr::kLargestSorFile); // sparse
    EXPECT_TRUE(readSorFile(path, {false}).ok());
    fs::resize_file(path, otdr::kLargestSorFile + 1);
    EXPECT_EQ(codeOf(readSorFile(path)), ErrorCode::TooLarge);
}

} // namespace
