// Fibre files: they are read or refused with words, and every fibre that is read answers to light
// with finite numbers.
#include "fuzz/claim.h"
#include "programs/wfgather/fibrefile.h"
#include "programs/wfgather/linkresponse.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

using fuzz::claim;

void checkTruth(const gather::Fibre& fibre, int wavelength_nm)
{
    const auto truth = gather::truthOf(fibre, wavelength_nm);
    const auto isEarlier = [](const gather::TruthEvent& a, const gather::TruthEvent& b) {
        return a.time_ns < b.time_ns;
    };
    claim(std::is_sorted(truth.begin(), truth.end(), isEarlier), "events come in order of time");
    for (const gather::TruthEvent& event : truth) {
        claim(std::isfinite(event.time_ns) && std::isfinite(event.at_m), "an event has a place");
        // Nothing lies behind the end that could have lost light.
        claim(event.end || (std::isfinite(event.loss_dB) && std::isfinite(event.apparentLoss_dB)),
              "an event has a loss");
    }
}

void checkResponse(const gather::Fibre& fibre, int wavelength_nm)
{
    const gather::LinkResponse response = gather::responseOf(fibre, wavelength_nm);
    claim(response.launch_perNs > 0.0, "the fibre scatters at the port");
    for (const gather::Stretch& stretch : response.backscatter) {
        claim(stretch.from_ns <= stretch.to_ns, "a stretch ends behind its beginning");
        claim(std::isfinite(stretch.power_perNs) && std::isfinite(stretch.decay_perNs),
              "backscatter is finite");
    }
    for (const gather::Reflection& reflection : response.reflections) {
        claim(std::isfinite(reflection.at_ns) && std::isfinite(reflection.power),
              "reflections are finite");
    }
}

} // namespace

/// Qt's JSON parser forgets a container of most texts that it refuses; what we allocate is still
/// watched.
extern "C" const char*
__lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier): its name
{
    return "leak:libQt5Core";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray json(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const auto fibre = gather::parseFibre(json, "fibre.json");
    if (!fibre) {
        claim(!fibre.error().message.empty(), "an error has words");
        return 0;
    }
    claim(std::isfinite(fibre->length_m()) && fibre->length_m() > 0.0, "a fibre has a length");
    for (const int wavelength_nm : {850, 1310, 1550}) {
        checkTruth(*fibre, wavelength_nm);
        checkResponse(*fibre, wavelength_nm);
    }
    return 0;
}
