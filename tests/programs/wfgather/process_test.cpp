#include "tests/programs/wfgather/gatherprocess.h"

#include <QProcess>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

using namespace wfgather_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string fast(const std::string& measParams)
{
    return "[MeasParams]\n" + measParams + "\n" + kFast;
}

std::vector<std::byte> bytesAfterRun(const std::string& settings)
{
    const RunDirectory directory(settings);
    GatherProcess gather(directory);
    gather.rest();
    EXPECT_EQ(gather.wait(), 0);
    const auto snapshot = directory.snapshot();
    return snapshot ? otdr::encodeSnapshot(*snapshot) : std::vector<std::byte> {};
}

/// Exit code, standard output and error of the program with other arguments than usual.
struct Outcome
{
    int code = -1;
    std::string output;
    std::string errors;
};

Outcome run(const QStringList& arguments)
{
    QProcess process;
    process.start(WAVEFORM_BIN "/wfgather", arguments);
    EXPECT_TRUE(process.waitForFinished(10000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

/// One line that names the program.
void expectOneLine(const std::string& errors, const std::string& part)
{
    EXPECT_THAT(errors, StartsWith("wfgather: "));
    EXPECT_THAT(errors, HasSubstr(part));
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1);
}

} // namespace

TEST(Gather, OneWavelengthIsOneTrace)
{
    const RunDirectory directory(fast("duration=3\npulse=30\ndistance=2500\nwavelength=1550\n"
                                      "ior1550=1.4682\nhelix=0.5"));
    GatherProcess gather(directory);
    EXPECT_THAT(withoutEvents(gather.rest()),
                ElementsAre("G {", "C * 1",
                            "M { 1/1 wavelength 1550 duration 3 ior 1.4682 helix 0.5 distance 2500 "
                            "pulse 30 rbs -81.9",
                            "M * RT 2 ET 1", "M * RT 1 ET 2", "M * RT 0 ET 3", "M }", "A {", "A }",
                            "G }"));
    EXPECT_EQ(gather.wait(), 0);
    EXPECT_EQ(gather.errors(), "");
    const auto snapshot = directory.snapshot();
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->sequence, 3U);
    EXPECT_EQ(snapshot->wavelength_nm, 1550);
    EXPECT_EQ(snapshot->pulse_ns, 30U);
    EXPECT_EQ(snapshot->countsPerDb, 1000);
    EXPECT_EQ(snapshot->firstSample_ns, 0.0);
    EXPECT_GT(snapshot->averages, 3U);
}

TEST(Gather, BothWavelengthsAreTwoTracesEachWithItsAnalysis)
{
    const RunDirectory directory(fast("duration=1\nwavelength=all"));
    GatherProcess gather(directory);
    const auto messages = withoutEvents(gather.rest());
    EXPECT_THAT(shortened(messages),
                ElementsAre("G {", "C * 2", "M { 1/2", "M * RT 0 ET 1", "M }", "A {", "A }",
                            "M { 2/2", "M * RT 0 ET 1", "M }", "A {", "A }", "G }"));
    EXPECT_THAT(messages[2], HasSubstr("wavelength 1310 duration 1 ior 1.4677"));
    EXPECT_THAT(messages[2], HasSubstr("rbs -79.5"));
    EXPECT_THAT(messages[7], HasSubstr("wavelength 1550 duration 1 ior 1.4683"));
    EXPECT_THAT(messages[7], HasSubstr("rbs -81.9"));
    EXPECT_EQ(gather.wait(), 0);
    EXPECT_EQ(directory.snapshot()->sequence, 2U);
    EXPECT_EQ(directory.snapshot()->wavelength_nm, 1550);
}

TEST(Gather, ABackscatterThatIsSetIsAnnounced)
{
    const RunDirectory directory(fast("duration=1\nrbs=-80.5"));
    GatherProcess gather(directory);
    EXPECT_THAT(gather.rest()[2], testing::EndsWith("rbs -80.5"));
}

TEST(Gather, EachMessageLeavesInOneWriteAndIsNumbered)
{
    const RunDirectory directory(fast("duration=2"));
    GatherProcess gather(directory);
    int number = 0;
    int events = 0;
    for (std::string packet = gather.next(); !packet.empty(); packet = gather.next()) {
        EXPECT_THAT(packet, StartsWith(std::to_string(++number) + ' '));
        EXPECT_THAT(packet, testing::EndsWith(";\n"));
        EXPECT_EQ(std::count(packet.begin(), packet.end(), ';'), 1);
        events += packet.find(" A * ") != std::string::npos ? 1 : 0;
    }
    EXPECT_GT(events, 0);
    EXPECT_EQ(number, 9 + events);
}

TEST(Gather, RefreshesOnceASecondOfItsOwnTime)
{
    const RunDirectory directory("[MeasParams]\nduration=4\n[Simulation]\ntimeScale=0.2\n");
    GatherProcess gather(directory);
    gather.readTo("M {");
    const auto begin = std::chrono::steady_clock::now();
    gather.readTo("M }");
    const double passed =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_GT(passed, 0.75);
    EXPECT_LT(passed, 1.6);
}

TEST(Gather, TheSameSeedGivesTheSameBytesAtAnyPace)
{
    const std::string settings = "[MeasParams]\nduration=2\n[Simulation]\nseed=5\ntimeScale=";
    const auto first = bytesAfterRun(settings + "0\n");
    EXPECT_FALSE(first.empty());
    EXPECT_EQ(bytesAfterRun(settings + "0\n"), first);
    EXPECT_EQ(bytesAfterRun(settings + "0.1\n"), first);
    EXPECT_NE(bytesAfterRun("[MeasParams]\nduration=2\n[Simulation]\nseed=6\ntimeScale=0\n"),
              first);
}

TEST(Gather, WithoutASeedNoTwoRunsAreAlike)
{
    const std::string settings = "[MeasParams]\nduration=1\n[Simulation]\ntimeScale=0\n";
    EXPECT_NE(bytesAfterRun(settings), bytesAfterRun(settings));
}

TEST(Gather, MeasuresTheFibreThatIsNamed)
{
    const std::string quiet = fast("duration=1") + "fibre=" WAVEFORM_FIBRES "/launch-fibre.json\n";
    const auto other = bytesAfterRun(quiet);
    EXPECT_FALSE(other.empty());
    EXPECT_NE(other, bytesAfterRun(fast("duration=1")));
    EXPECT_EQ(bytesAfterRun(fast("duration=1") + "fibre=" WAVEFORM_FIBRES "/demo-link.json\n"),
              bytesAfterRun(fast("duration=1")));
}

TEST(Gather, LeavesNothingButTheSnapshotAndItsEmptyFolder)
{
    const RunDirectory directory(fast("duration=2"));
    GatherProcess gather(directory);
    gather.rest();
    EXPECT_EQ(gather.wait(), 0);
    EXPECT_EQ(directory.names(), QStringList({".wfgather", "snapshot.bin"}));
    EXPECT_EQ(directory.names(".wfgather"), QStringList());
}

TEST(Gather, RemovesWhatAnEarlierRunLeftBeforeItSpeaks)
{
    const RunDirectory directory("[MeasParams]\nduration=15\n");
    ASSERT_EQ(mkdir(directory.path(".wfgather").c_str(), 0700), 0);
    std::ofstream(directory.snapshotPath()) << "an old trace";
    std::ofstream(directory.path(".wfgather/snapshot.bin")) << "half of one";
    GatherProcess gather(directory);
    gather.readTo("G {");
    EXPECT_EQ(directory.names(), QStringList({".wfgather"}));
    gather.signal(SIGTERM);
    gather.rest();
    EXPECT_EQ(gather.wait(), 0);
    EXPECT_EQ(directory.names(".wfgather"), QStringList());
}

TEST(Gather, EndsQuietlyWhenNobodyReads)
{
    const RunDirectory directory("[MeasParams]\nduration=15\n[Simulation]\ntimeScale=0.05\n");
    GatherProcess gather(directory);
    gather.readTo("M {");
    gather.closeOutput();
    EXPECT_EQ(gather.wait(), 1);
    EXPECT_EQ(gather.errors(), "");
    EXPECT_EQ(directory.names(".wfgather"), QStringList());
}

TEST(Gather, BeginsNoSecondTraceForNobody)
{
    const RunDirectory directory(
        "[MeasParams]\nduration=1\nwavelength=all\n[Simulation]\ntimeScale=0.3\n");
    GatherProcess gather(directory);
    gather.readTo("M *");
    while (!directory.snapshot()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    gather.closeOutput();
    EXPECT_EQ(gather.wait(), 1);
    ASSERT_TRUE(directory.snapshot());
    EXPECT_EQ(directory.snapshot()->wavelength_nm, 1310);
}

TEST(Gather, SaysOnceThatItsDirectoryIsMissing)
{
    const RunDirectory directory(fast("duration=1"));
    ASSERT_EQ(rmdir(directory.path("").c_str()), 0);
    GatherProcess gather(directory);
    EXPECT_THAT(gather.rest(), IsEmpty());
    EXPECT_EQ(gather.wait(), 1);
    expectOneLine(gather.errors(), "No such file or directory");
}

TEST(Gather, RefusesAFolderThatIsNotItsOwn)
{
    const RunDirectory linked(fast("duration=1"));
    ASSERT_EQ(symlink("/tmp", linked.path(".wfgather").c_str()), 0);
    GatherProcess gather(linked);
    EXPECT_THAT(gather.rest(), IsEmpty());
    EXPECT_EQ(gather.wait(), 1);
    expectOneLine(gather.errors(), ".wfgather: Not a directory");

    const RunDirectory occupied(fast("duration=1"));
    ASSERT_EQ(mkdir(occupied.snapshotPath().c_str(), 0700), 0);
    GatherProcess other(occupied);
    EXPECT_THAT(other.rest(), IsEmpty());
    EXPECT_EQ(other.wait(), 1);
    expectOneLine(other.errors(), "snapshot.bin: Is a directory");
}

TEST(Gather, TakesNoPipeOrDeviceAwayForItsSnapshot)
{
    const RunDirectory directory(fast("duration=1"));
    ASSERT_EQ(mkfifo(directory.snapshotPath().c_str(), 0600), 0);
    GatherProcess gather(directory);
    EXPECT_THAT(gather.rest(), IsEmpty());
    EXPECT_EQ(gather.wait(), 1);
    expectOneLine(gather.errors(), "snapshot.bin: not a regular file");
    EXPECT_TRUE(std::filesystem::is_fifo(directory.snapshotPath()));
}

TEST(Gather, FollowsNoLinkThatStandsForItsTemporaryFile)
{
    const RunDirectory directory(fast("duration=1"));
    ASSERT_EQ(mkdir(directory.path(".wfgather").c_str(), 0700), 0);
    std::ofstream(directory.path("precious")) << "precious";
    ASSERT_EQ(symlink(directory.path("precious").c_str(),
                      directory.path(".wfgather/snapshot.bin").c_str()),
              0);
    GatherProcess gather(directory);
    gather.rest();
    EXPECT_EQ(gather.wait(), 1);
    std::string content;
    std::ifstream(directory.path("precious")) >> content;
    EXPECT_EQ(content, "precious");
}

TEST(Gather, SaysOnceThatTheDiskIsFull)
{
    const RunDirectory directory(fast("duration=5"));
    GatherProcess gather(directory, 1000);
    EXPECT_THAT(shortened(gather.rest()), ElementsAre("G {", "C * 1", "M { 1/1"));
    EXPECT_EQ(gather.wait(), 1);
    expectOneLine(gather.errors(), "File too large");
    EXPECT_EQ(directory.names(), QStringList({".wfgather"}));
    EXPECT_EQ(directory.names(".wfgather"), QStringList());
}

TEST(Gather, BadInputIsOneLineBeforeAnythingBegins)
{
    struct Case
    {
        std::string settings;
        std::string part;
    };

    for (const Case& one :
         {Case {"[MeasParams]\npulse=x\n", "MeasParams/pulse"},
          Case {"[Simulation]\nfibre=/nowhere.json\n", "/nowhere.json: no such fibre file"},
          Case {"[Simulation]\nfibre=" WAVEFORM_FIBRES "/README.md\n", "README.md: at byte"},
          Case {"[Simulation]\nreplay=/nowhere.sor\n", "/nowhere.sor"},
          Case {"[Simulation]\nreplay=" WAVEFORM_FIBRES "/README.md\n", "README.md"}}) {
        const RunDirectory directory(one.settings);
        GatherProcess gather(directory);
        EXPECT_THAT(gather.rest(), IsEmpty());
        EXPECT_EQ(gather.wait(), 1);
        expectOneLine(gather.errors(), one.part);
        EXPECT_EQ(directory.names(), QStringList()) << one.part;
    }
}

TEST(Gather, MissingSettingsAreAnError)
{
    const Outcome outcome = run({"-o", "/nowhere/snapshot", "-c", "/nowhere/settings"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.output, "");
    expectOneLine(outcome.errors, "/nowhere/settings: no such settings file");
}

TEST(Gather, AWrongCommandLineEndsWithTwo)
{
    for (const QStringList& arguments :
         {QStringList {}, QStringList {"-o", "x"}, QStringList {"-w", "x", "-i", "y"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_EQ(outcome.output, "");
        expectOneLine(outcome.errors, "see --help");
    }
}

TEST(Gather, HelpAndVersionAreAnswersOnStandardOutput)
{
    const Outcome help = run({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_THAT(help.output, HasSubstr("SNAPSHOT"));
    EXPECT_EQ(help.errors, "");
    const Outcome version = run({"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_EQ(version.output, "wfgather " WAVEFORM_VERSION "\n");
}
