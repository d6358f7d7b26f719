#include "programs/wfgather/messagewriter.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <clocale>
#include <csignal>
#include <string>
#include <thread>

namespace {

using gather::MessageWriter;

/// A pipe with its two ends.
class Pipe
{
public:
    Pipe() { EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0); }

    ~Pipe()
    {
        closeReader();
        close(ends[1]);
    }

    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    [[nodiscard]] int writer() const { return ends[1]; }

    std::string read() const
    {
        std::array<char, 4096> text {};
        const ssize_t count = ::read(ends[0], text.data(), text.size());
        return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(0, count))};
    }

    void closeReader()
    {
        if (ends[0] >= 0) {
            close(ends[0]);
            ends[0] = -1;
        }
    }

private:
    std::array<int, 2> ends {-1, -1};
};

double secondsOf(const std::function<void()>& what)
{
    const auto begin = std::chrono::steady_clock::now();
    what();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

} // namespace

TEST(MessageWriter, WritesARunAsItsReaderParsesIt)
{
    const Pipe pipe;
    MessageWriter messages(pipe.writer());
    gather::TraceParams params;
    params.ior = 1.46770;
    params.distance_m = 10000.0;
    params.backscatter_dB = -66.3;
    messages.gatherStarts();
    messages.tracesPrepared(3);
    messages.traceStarts(1, 3, params);
    messages.tick(14, 1);
    messages.traceEnds();
    messages.analysisStarts();
    messages.eventFound("e position 400 coordinate 4084.25 loss 3.1");
    messages.analysisEnds();
    messages.gatherEnds();
    EXPECT_EQ(pipe.read(),
              "1 G {;\n"
              "2 C * 3;\n"
              "3 M { 1/3 wavelength 1310 duration 15 ior 1.4677 helix 0 distance 10000 pulse 100 "
              "rbs -66.3;\n"
              "4 M * RT 14 ET 1;\n"
              "5 M };\n"
              "6 A {;\n"
              "7 A * e position 400 coordinate 4084.25 loss 3.1;\n"
              "8 A };\n"
              "9 G };\n");
}

TEST(MessageWriter, KeepsTheDecimalPointInEveryLocale)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "ru_RU.UTF-8"}) {
        std::setlocale(LC_ALL, name); // where it is installed
        const Pipe pipe;
        MessageWriter messages(pipe.writer());
        messages.traceStarts(1, 1, {});
        EXPECT_EQ(pipe.read().find(','), std::string::npos);
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(MessageWriter, WaitsUntilThePipeIsEmpty)
{
    const Pipe pipe;
    MessageWriter messages(pipe.writer());
    messages.gatherStarts();
    std::thread reader([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_EQ(pipe.read(), "1 G {;\n");
    });
    const double waited = secondsOf([&] { messages.waitUntilRead(); });
    reader.join();
    EXPECT_GE(waited, 0.19);
    EXPECT_LT(waited, 0.9);
}

TEST(MessageWriter, WaitsNoLongerThanASecond)
{
    const Pipe pipe;
    MessageWriter messages(pipe.writer());
    messages.gatherStarts();
    const double waited = secondsOf([&] { messages.waitUntilRead(); });
    EXPECT_GE(waited, 0.99);
    EXPECT_LT(waited, 1.5);
}

TEST(MessageWriter, DoesNotWaitForAnEmptyPipeOrAFile)
{
    const Pipe pipe;
    MessageWriter empty(pipe.writer());
    EXPECT_LT(secondsOf([&] { empty.waitUntilRead(); }), 0.1);

    const int file = open("/dev/null", O_WRONLY | O_CLOEXEC);
    MessageWriter messages(file);
    messages.gatherStarts();
    EXPECT_LT(secondsOf([&] { messages.waitUntilRead(); }), 0.1);
    close(file);
}

TEST(MessageWriter, NoticesThatItsReaderHasGone)
{
    std::signal(SIGPIPE, SIG_IGN);
    Pipe pipe;
    MessageWriter messages(pipe.writer());
    messages.gatherStarts();
    EXPECT_TRUE(messages.isConnected());
    pipe.closeReader();
    EXPECT_LT(secondsOf([&] { messages.waitUntilRead(); }), 0.1);
    messages.tracesPrepared(1);
    EXPECT_FALSE(messages.isConnected());
    messages.gatherEnds(); // and stays quiet
    EXPECT_FALSE(messages.isConnected());
}
