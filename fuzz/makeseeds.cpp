// Writes what the fuzz targets start from into a directory for each of them:
//
//   make_fuzz_seeds DIRECTORY
//
// Everything is made up here; no instrument's file is among it.
#include "fuzz/detectioninput.h"
#include "platform/otdr/core/rawsamples.h"
#include "platform/otdr/core/snapshot.h"
#include "tests/support/sorsketch.h"
#include "tests/support/tracebuilder.h"

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using testing_support::Bytes;
using testing_support::SorSketch;
using testing_support::TraceBuilder;
using namespace testing_support; // NOLINT(google-build-using-namespace): for 1_km

namespace fs = std::filesystem;

fs::path root;

void save(const std::string& target, const std::string& name, const Bytes& bytes)
{
    fs::create_directories(root / target);
    std::ofstream(root / target / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

void save(const std::string& target, const std::string& name, const std::string& text)
{
    const auto* first = reinterpret_cast<const std::byte*>(text.data());
    save(target, name, Bytes(first, first + text.size()));
}

SorSketch shortTrace(int version)
{
    SorSketch sketch = SorSketch::plain();
    sketch.version = version;
    sketch.samples = fibreSamples(60, {0, 45}, 4, 45);
    return sketch;
}

void saveTraceFiles()
{
    save("sor", "version1", shortTrace(1).build());
    save("sor", "version2", shortTrace(2).build());
    SorSketch full = shortTrace(2);
    full.makers.push_back({"Maker Block", Bytes(12, std::byte {7})});
    full.fxdPadding = Bytes(3);
    full.keyEventsPadding = Bytes(5);
    full.tail = Bytes(4, std::byte {1});
    save("sor", "everything", full.build());
    full.version = 1;
    save("sor", "everything1", full.build());
}

TraceBuilder link()
{
    return TraceBuilder().fibre(1_km).front(4).behind(300).noise(0.02_dB, 7).noiseFloor(5_dB);
}

void saveSamples(const std::string& name, const TraceBuilder& builder)
{
    save("detection", name, fuzz::encodeDetectionInput(builder.counts()));
    otdr::Snapshot snapshot;
    snapshot.sampleInterval_ns = 10.0;
    snapshot.averages = 1000;
    snapshot.pulse_ns = 100;
    snapshot.wavelength_nm = 1550;
    const std::vector<std::uint16_t> counts = builder.counts();
    snapshot.samples = otdr::RawSamples({counts.begin(), counts.begin() + 40});
    save("snapshot", name, otdr::encodeSnapshot(snapshot));
}

void saveTraces()
{
    saveSamples("plain", link());
    saveSamples("splice", link().splice(500_m, 0.5_dB));
    saveSamples("gain", link().splice(500_m, Decibels {-0.4}));
    saveSamples("connectors",
                link()
                    .reflection(0_m, 12_dB)
                    .connector(300_m, 0.4_dB, 10_dB)
                    .connector(600_m, 0.4_dB, 8_dB));
    saveSamples("end", link().reflection(1_km, 15_dB));
}

void saveMessages()
{
    const std::string run =
        "1 G {;2 C * 2;3 M { 1/2 wavelength 1310 duration 15 ior 1.4677 helix 0 distance 10000 "
        "pulse 100 rbs -79.5;4 M * RT 14 ET 1;5 M };6 A {;7 A * r position 1966 coordinate 1004.02 "
        "loss 0.22;8 A };9 G };";
    save("gathermessages", "run", run);
    save("gathermessages", "chunks",
         "1 G {;\n2 C * 2;\r\n3 M { 1/\xFF"
         "2 wavelength 1310;\xFF;4 M * RT 1");
    // The last byte of an event text chooses: even for a text, odd for fields.
    save("eventtext", "text",
         "r position 2467 coordinate 1234.5 width 10 loss -0.12 reflIn 33.2 reflOut 33.3 "
         "reflectance -52.1 orl 31.7 length 512 attenuationBefore 0.195 beforeFrom 1000 "
         "behindFrom 1250 behindTo 2000 saturated 1@");
    save("eventtext", "fields", std::string(130, '?'));
}

void saveSettings()
{
    save("settings", "whole",
         "[MeasParams]\nduration=15\npulse=100\ndistance=10000\nwavelength=1310\nior1310=1.4677\n"
         "ior1550=1.4682\nhelix=0.5\nrbs=-79.5\n\n[Simulation]\nfibre=/tmp/fibre.json\n"
         "replay=\nseed=7\ntimeScale=0\n");
    save("settings", "realtime", "[MeasParams]\nduration=0\nwavelength=1550\n");
    save("settings", "all", "[MeasParams]\nwavelength=all\ndistance=1.5e5\npulse=20000\n");
}

/// One mistake each that chance hardly makes.
void saveRefusedFibres()
{
    const std::string section = R"({"length_m":1,"attenuation_db_per_km":0})";
    const std::string sections = R"("sections":[)" + section + "]";
    save("fibrefile", "list", "[]");
    save("fibrefile", "section-of-text", R"({"sections":["a"]})");
    save("fibrefile", "sections-of-text", R"({"sections":"a"})");
    save("fibrefile", "name-of-numbers", R"({"name":1,)" + sections + "}");
    save("fibrefile", "long-name",
         R"({"name":")" + std::string(300, 'a') + R"(",)" + sections + "}");
}

void saveFibres(const fs::path& fibres)
{
    fs::create_directories(root / "fibrefile");
    for (const auto& entry : fs::directory_iterator(fibres)) {
        if (entry.path().extension() == ".json") {
            fs::copy_file(entry.path(), root / "fibrefile" / entry.path().filename(),
                          fs::copy_options::overwrite_existing);
        }
    }
    save("fibrefile", "smallest", R"({"sections":[{"length_m":1,"attenuation_db_per_km":0}]})");
    saveRefusedFibres();
}

void saveMuseum(const fs::path& museum)
{
    for (const auto& entry : fs::directory_iterator(museum)) {
        if (entry.path().extension() == ".sor") {
            fs::copy_file(entry.path(), root / "sor" / entry.path().filename(),
                          fs::copy_options::overwrite_existing);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("make_fuzz_seeds DIRECTORY\n", stderr);
        return 2;
    }
    root = argv[1];
    saveTraceFiles();
    saveMuseum(fs::path(WAVEFORM_TEST_DATA) / "bad");
    saveTraces();
    saveMessages();
    saveSettings();
    saveFibres(WAVEFORM_FIBRES);
    return 0;
}
