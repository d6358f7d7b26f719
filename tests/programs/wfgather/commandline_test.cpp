#include "programs/wfgather/commandline.h"

#include <gmock/gmock.h>

namespace {

using gather::CommandLine;
using gather::Form;
using testing::HasSubstr;

CommandLine parseLine(std::vector<const char*> arguments)
{
    arguments.insert(arguments.begin(), "wfgather");
    return gather::parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

} // namespace

TEST(GatherCommandLine, TakesTheTwoFiles)
{
    const CommandLine line = parseLine({"-o", "/tmp/user/wfsnapshot.bin", "-c", "/tmp/otdrcfg-1"});
    EXPECT_EQ(line.form, Form::Run);
    EXPECT_EQ(line.snapshot, "/tmp/user/wfsnapshot.bin");
    EXPECT_EQ(line.settings, "/tmp/otdrcfg-1");
}

TEST(GatherCommandLine, KeepsTheBytesOfANameAsTheyAre)
{
    EXPECT_EQ(parseLine({"-o", "\xff\xfe", "-c", "\xc3\xa9"}).snapshot, "\xff\xfe");
    EXPECT_EQ(parseLine({"-o", "a", "-c", "\xc3\xa9"}).settings, "\xc3\xa9");
}

TEST(GatherCommandLine, WantsBothFilesAndNothingElse)
{
    for (const auto& arguments :
         std::vector<std::vector<const char*>> {{},
                                                {"-o", "a"},
                                                {"-c", "b"},
                                                {"-o", "a", "-c"},
                                                {"-o", "", "-c", "b"},
                                                {"-o", "a", "-c", "b", "c"},
                                                {"-o", "a", "-c", "b", "-x"},
                                                {"--nonsense"}}) {
        const CommandLine line = parseLine(arguments);
        EXPECT_EQ(line.form, Form::Wrong);
        EXPECT_FALSE(line.message.empty());
    }
}

TEST(GatherCommandLine, KnowsHelpAndVersion)
{
    EXPECT_EQ(parseLine({"--help"}).form, Form::ShowHelp);
    EXPECT_THAT(parseLine({"--help"}).message, HasSubstr("timeScale"));
    EXPECT_EQ(parseLine({"--version"}).form, Form::ShowVersion);
}
