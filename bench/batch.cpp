// What it costs to go through very many trace files with the programs, beside what nothing can go
// below: reading the bytes from the disk cache (cat), and the search for events itself.
//
//   batch [--files N] [--traces DIRECTORY] [--bin DIRECTORY]
//
// Copies the traces of a directory until there are N, 10,000 otherwise; where there are none,
// made-up ones. Times are CPU time, the system's work included: what other programs do at the same
// time hardly changes them.

#include "bench/childrun.h"
#include "bench/measuredfile.h"
#include "platform/otdr/core/atomicfile.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorwriter.h"
#include "platform/otdr/core/storedthresholds.h"
#include "platform/otdr/core/trace.h"
#include "tests/support/tracebuilder.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

constexpr std::size_t kFiles = 10'000;
constexpr std::size_t kFewer = 10; // the short runs have so many times fewer files
constexpr std::uint64_t kMadeUp = 4; // traces, where there are none

struct Options
{
    std::size_t files = kFiles;
    fs::path traces = WAVEFORM_TRACES;
    fs::path bin = WAVEFORM_BIN;
};

/// A trace of 50 thousand samples with a few events, as an instrument would save it.
std::vector<std::byte> madeUpTrace(std::uint64_t seed)
{
    using namespace testing_support; // NOLINT(google-build-using-namespace): for 1_km
    const auto builder = TraceBuilder()
                             .fibre(40_km)
                             .behind(10'000)
                             .noise(0.02_dB, seed)
                             .noiseFloor(5_dB)
                             .reflection(0_m, 12_dB)
                             .splice(12_km, 0.3_dB)
                             .connector(25_km, 0.4_dB, 10_dB)
                             .reflection(40_km, 15_dB);
    otdr::sor::File file;
    file.hasGen = file.hasSup = file.hasFxd = true;
    file.gen.wavelength_nm = 1550;
    const std::vector<std::uint16_t> counts = builder.counts();
    constexpr std::uint32_t kSpacing = 100'000; // 10 ns, in units of 10^-4 ns
    file.fxd.pulses = {{100, kSpacing, static_cast<std::uint32_t>(counts.size())}};
    file.fxd.groupIndex = 146'800;
    file.data.samples = otdr::RawSamples(counts);
    auto bytes = otdr::encodeSor(file);
    return bytes ? *bytes : std::vector<std::byte>();
}

/// The traces that are copied.
std::vector<fs::path> originals(const Options& options, const fs::path& scratch)
{
    std::vector<fs::path> found;
    std::error_code problem;
    for (const auto& entry : fs::directory_iterator(options.traces, problem)) {
        if (entry.path().extension() == ".sor") {
            found.push_back(entry.path());
        }
    }
    for (std::uint64_t seed = 1; seed <= kMadeUp && found.size() < seed; ++seed) {
        const fs::path name = scratch / ("made-up" + std::to_string(seed) + ".sor");
        if (otdr::writeFileAtomically(name, madeUpTrace(seed))) {
            found.push_back(name);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

/// The names of so many copies, in a directory of their own.
Words copies(const std::vector<fs::path>& originals, const fs::path& directory, std::size_t count)
{
    Words names;
    fs::create_directories(directory);
    for (std::size_t i = 0; i < count; ++i) {
        names.push_back(std::to_string(i) + ".sor");
        fs::copy_file(originals[i % originals.size()], directory / names.back(),
                      fs::copy_options::overwrite_existing);
        fs::permissions(directory / names.back(), fs::perms::owner_write, fs::perm_options::add);
    }
    return names;
}

/// What `batch --detect FILE...` does: the work of the event finder without its program.
int detectAll(int argc, char** argv)
{
    std::size_t events = 0;
    for (int i = 2; i < argc; ++i) {
        const auto file = otdr::readSorFile(argv[i], {false});
        if (!file) {
            continue;
        }
        const otdr::Measurement measurement = measuredfile::measurement(*file);
        if (!(otdr::sor::axisOf(*file).sampleInterval_ns > 0.0) || !(measurement.pulse_ns > 0.0)) {
            continue;
        }
        const otdr::Trace trace(file->data.samples, measuredfile::dbPerCount(*file),
                                measuredfile::axis(*file));
        const auto found =
            otdr::detectEvents(trace, measurement, otdr::sor::storedThresholds(*file));
        events += found.events.size();
    }
    std::printf("%zu\n", events);
    return 0;
}

Words command(Words words, const Words& names)
{
    words.insert(words.end(), names.begin(), names.end());
    return words;
}

void tell(const char* what, const ChildRun& run, std::size_t files)
{
    const auto count = static_cast<double>(files);
    std::printf("%-34s %6zu files %9.1f us a file  %7.2f s in all  peak %5.1f MB  code %d\n", what,
                files, 1e6 * run.cpu_s / count, run.cpu_s,
                static_cast<double>(run.peak_KB) / 1024.0, run.code);
    std::fflush(stdout);
}

void tellPart(const char* what, double allowed_s, double taken_s)
{
    std::printf("  %-50s %5.1f %%\n", what, 100.0 * allowed_s / taken_s);
}

/// The inspector takes all files at once.
bool measureInspector(const Options& options, const Words& names, const fs::path& directory)
{
    (void)runChild(command({"cat"}, names), directory); // into the cache
    const ChildRun cat = runChild(command({"cat"}, names), directory);
    tell("cat", cat, names.size());
    const ChildRun info = runChild(command({options.bin / "otdrinfo", "--json"}, names), directory);
    tell("otdrinfo --json", info, names.size());
    tellPart("otdrinfo reaches, of cat", cat.cpu_s, info.cpu_s);
    return cat.code == 0 && info.code == 0;
}

/// So does the finder. A file that cannot be searched is no failure of the program.
bool measureFinder(const Options& options, const Words& names, const fs::path& directory)
{
    const fs::path self = fs::read_symlink("/proc/self/exe");
    (void)runChild(command({"cat"}, names), directory); // into the cache
    const ChildRun detect = runChild(command({self, "--detect"}, names), directory);
    tell("reading and detection alone", detect, names.size());
    const ChildRun finder =
        runChild(command({options.bin / "wfevfind", "--json"}, names), directory);
    tell("wfevfind --json", finder, names.size());
    tellPart("wfevfind reaches, of reading and detection", detect.cpu_s, finder.cpu_s);
    return detect.code == 0 && (finder.code == 0 || finder.code == 1);
}

bool parse(int argc, char** argv, Options& options)
{
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string name = argv[i];
        const std::string value = argv[i + 1];
        if (name == "--files") {
            options.files = std::strtoul(value.c_str(), nullptr, 10);
        } else if (name == "--traces") {
            options.traces = value;
        } else if (name == "--bin") {
            options.bin = value;
        } else {
            return false;
        }
    }
    options.bin = fs::absolute(options.bin);
    return argc % 2 == 1 && options.files >= kFewer;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1 && std::string(argv[1]) == "--detect") {
        return detectAll(argc, argv);
    }
    Options options;
    if (!parse(argc, argv, options)) {
        std::fputs("batch [--files N] [--traces DIRECTORY] [--bin DIRECTORY]\n", stderr);
        return 2;
    }
    const fs::path scratch =
        fs::temp_directory_path() / ("waveform-batch-" + std::to_string(::getpid()));
    int code = 0;
    try {
        fs::create_directories(scratch);
        const auto traces = originals(options, scratch);
        const Words names = copies(traces, scratch / "many", options.files);
        std::printf("%zu different traces\n", traces.size());
        const Words few(names.begin(), names.begin() + static_cast<long>(names.size() / kFewer));
        const bool isWhole = measureInspector(options, few, scratch / "many")
            && measureInspector(options, names, scratch / "many")
            && measureFinder(options, few, scratch / "many")
            && measureFinder(options, names, scratch / "many");
        code = isWhole ? 0 : 1;
    } catch (const fs::filesystem_error& problem) {
        std::fprintf(stderr, "batch: %s\n", problem.what());
        code = 1;
    }
    std::error_code ignored;
    fs::remove_all(scratch, ignored);
    return code;
}
