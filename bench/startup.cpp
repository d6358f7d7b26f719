// From the start of the program to its first painted window, and the memory that it has with four
// traces, beside a window of Qt and Qwt with nothing in it:
//
//     startup [--rounds N] [--samples N]
//
// The two take turns, so that what else the machine does meets both.

#include "bench/benchtrace.h"
#include "bench/windowrun.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <vector>

namespace {

struct Figures
{
    std::vector<double> wall_ms;
    std::vector<double> cpu_ms;
};

double least(const std::vector<double>& values)
{
    return *std::min_element(values.begin(), values.end());
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

int fail(const QString& why)
{
    QTextStream(stderr) << "startup: " << why << "\n";
    return 1;
}

void tell(const char* what, const std::vector<double>& ours, const std::vector<double>& empty)
{
    QTextStream(stdout) << QString("%1: least %2 ms to %3 ms, ratio %4; median %5 ms to %6 ms, "
                                   "ratio %7\n")
                               .arg(what)
                               .arg(least(ours), 0, 'f', 1)
                               .arg(least(empty), 0, 'f', 1)
                               .arg(least(ours) / least(empty), 0, 'f', 2)
                               .arg(median(ours), 0, 'f', 1)
                               .arg(median(empty), 0, 'f', 1)
                               .arg(median(ours) / median(empty), 0, 'f', 2);
}

int measureStarts(const QStringList& waveform, const QStringList& empty, int rounds)
{
    Figures ours;
    Figures theirs;
    for (int round = 0; round <= rounds; ++round) {
        const WindowRun first = runWindow(waveform, WAVEFORM_TELLER_DIR, false);
        const WindowRun second = runWindow(empty, WAVEFORM_TELLER_DIR, false);
        if (!first.problem.isEmpty() || !second.problem.isEmpty()) {
            return fail(first.problem + second.problem);
        }
        if (round > 0) { // the first fills the caches and writes the configuration
            ours.wall_ms.push_back(first.wall_ms);
            ours.cpu_ms.push_back(first.cpu_ms);
            theirs.wall_ms.push_back(second.wall_ms);
            theirs.cpu_ms.push_back(second.cpu_ms);
        }
    }
    tell("start to painted window", ours.wall_ms, theirs.wall_ms);
    tell("CPU time of the main thread", ours.cpu_ms, theirs.cpu_ms);
    return 0;
}

int measureMemory(const QStringList& waveform, const QStringList& empty, const QStringList& traces)
{
    constexpr double kMegabyte_KB = 1024.0;
    const WindowRun window = runWindow(empty, WAVEFORM_TELLER_DIR, true);
    const WindowRun without = runWindow(waveform, WAVEFORM_TELLER_DIR, true);
    const WindowRun with = runWindow(waveform + traces, WAVEFORM_TELLER_DIR, true);
    const QString problem = window.problem + without.problem + with.problem;
    if (!problem.isEmpty()) {
        return fail(problem);
    }
    const auto megabytes = [](long memory_KB) {
        return QString::number(static_cast<double>(memory_KB) / kMegabyte_KB, 'f', 1);
    };
    const auto line = [&](const QString& what, const WindowRun& run) {
        QTextStream(stdout) << QString(
                                   "%1: resident %2 MB (%3 MB more), share %4 MB (%5 MB more)\n")
                                   .arg(what)
                                   .arg(megabytes(run.resident_KB))
                                   .arg(megabytes(run.resident_KB - window.resident_KB))
                                   .arg(megabytes(run.share_KB))
                                   .arg(megabytes(run.share_KB - window.share_KB));
    };
    line("empty window", window);
    line("waveform", without);
    line("waveform with four traces", with);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(home.path()));
    qunsetenv("XDG_CONFIG_HOME");
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({"rounds", "So many starts of each.", "N", "20"});
    parser.addOption({"samples", "In each of the four traces.", "N", "131072"});
    parser.process(application);

    const QStringList waveform {QString(WAVEFORM_BIN) + "/waveform"};
    const QStringList empty {QCoreApplication::applicationDirPath() + "/emptywindow"};
    QStringList traces;
    for (unsigned int seed = 0; seed < 4; ++seed) {
        traces << home.filePath(QString("trace%1.sor").arg(seed));
        Reflectogram trace = benchTrace(parser.value("samples").toULongLong(), seed);
        if (trace.save(traces.last()) != 0) {
            return fail("cannot write " + traces.last());
        }
    }
    const int code = measureStarts(waveform, empty, std::max(1, parser.value("rounds").toInt()));
    return code != 0 ? code : measureMemory(waveform, empty, traces);
}
