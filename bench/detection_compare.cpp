// Compares the events that the detection finds with those that instruments have stored in their
// files.
//
//   detection_compare [--all] FILE.sor ...
//
// A stored event counts as found where one lies within a pulse of it (and within two samples for
// the shortest pulses). The start of the span and the end of the fibre are events as well. With
// --all every event is listed, not only the differences.

#include "bench/measuredfile.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorvalues.h"
#include "platform/otdr/core/storedthresholds.h"
#include "platform/otdr/core/trace.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using otdr::DetectedEvent;

/// Extra events with a smaller loss are not counted: instruments leave them out by their
/// thresholds.
constexpr double kExtra_dB = 0.03;

struct Totals
{
    int traces = 0;
    int stored = 0;
    int found = 0;
    int extra = 0;
    std::vector<double> lossDifferences_dB;
};

char letterOf(const DetectedEvent& event)
{
    switch (event.kind) {
    case DetectedEvent::Kind::Start:
        return 's';
    case DetectedEvent::Kind::Reflective:
        return event.echo ? 'h' : 'r';
    case DetectedEvent::Kind::NonReflective:
        return 'n';
    case DetectedEvent::Kind::Gain:
        return 'p';
    case DetectedEvent::Kind::End:
        break;
    }
    return 'e';
}

void printFound(const char* what, const DetectedEvent& event, double metres)
{
    std::printf("    %-7s %c %10.2f m  loss %7.3f +- %.4f  R %7.2f%s  T %.1f  Tp %.1f\n", what,
                letterOf(event), metres, event.loss_dB, event.lossError_dB, event.reflectance_dB,
                event.saturated() ? "*" : " ", event.stepStatistic, event.peakStatistic);
}

class Comparison
{
public:
    Comparison(const otdr::sor::File& file, bool listsAll, Totals& totals)
        : file(file)
        , trace(file.data.samples, measuredfile::dbPerCount(file), measuredfile::axis(file))
        , measurement(measuredfile::measurement(file))
        , listsAll(listsAll)
        , totals(totals)
    {
    }

    void run()
    {
        const auto start = std::chrono::steady_clock::now();
        detection = otdr::detectEvents(trace, measurement, otdr::sor::storedThresholds(file));
        const std::chrono::duration<double, std::milli> took =
            std::chrono::steady_clock::now() - start;
        std::printf(
            "  %zu samples, pulse %.0f ns, %.2f ms, noise %.1f dB, span %.3f (stored %.3f), "
            "ORL %.2f (%.2f)\n",
            trace.size(), measurement.pulse_ns, took.count(), detection.noiseFloor_dB,
            detection.spanLoss_dB, otdr::sor::totalLoss_dB(file), detection.returnLoss_dB,
            otdr::sor::returnLoss_dB(file));
        tolerance_m = std::max(measurement.pulse_ns, 2.0 * trace.axis().sampleInterval_ns)
            * measurement.metresPerNs;
        taken.assign(detection.events.size(), false);
        ++totals.traces;
        if (file.keyEvents) {
            compareStored();
        }
        compareExtra();
    }

private:
    [[nodiscard]] double metresOf(const DetectedEvent& event) const
    {
        return trace.distanceAt(event.index, measurement.metresPerNs);
    }

    void compareStored()
    {
        const std::string kinds = otdr::sor::eventKinds(file);
        for (std::size_t k = 0; k < file.keyEvents->events.size(); ++k) {
            const auto& stored = file.keyEvents->events[k];
            const double at_m = otdr::sor::position_m(file, stored);
            ++totals.stored;
            std::size_t nearest = detection.events.size();
            for (std::size_t i = 0; i < detection.events.size(); ++i) {
                const double away = std::abs(metresOf(detection.events[i]) - at_m);
                const bool isNearer = nearest == detection.events.size()
                    || away < std::abs(metresOf(detection.events[nearest]) - at_m);
                nearest = !taken[i] && isNearer ? i : nearest;
            }
            const bool isFound = nearest < detection.events.size()
                && std::abs(metresOf(detection.events[nearest]) - at_m) <= tolerance_m;
            const double loss = otdr::sor::loss_dB(stored);
            if (!isFound) {
                std::printf("    MISSED  %c %10.2f m  loss %7.3f  R %7.2f\n", kinds[k], at_m, loss,
                            otdr::sor::reflectance_dB(stored));
                continue;
            }
            taken[nearest] = true;
            ++totals.found;
            compareLoss(detection.events[nearest], kinds[k], at_m, loss);
        }
    }

    void compareLoss(const DetectedEvent& event, char kind, double at_m, double stored_dB)
    {
        const bool hasLoss = kind != 's' && kind != 'e' && event.kind != DetectedEvent::Kind::End
            && !std::isnan(stored_dB);
        const double off = std::abs(event.loss_dB - stored_dB);
        if (hasLoss) {
            totals.lossDifferences_dB.push_back(std::isnan(off) ? 9.0 : off);
        }
        if (listsAll || (hasLoss && !(off <= 0.005))) {
            std::printf("    %c %10.2f m  loss %7.3f:\n", kind, at_m, stored_dB);
            printFound("  found", event, metresOf(event));
        }
    }

    void compareExtra()
    {
        for (std::size_t i = 0; i < detection.events.size(); ++i) {
            const DetectedEvent& event = detection.events[i];
            if (taken[i] || event.echo) {
                continue;
            }
            const bool counts =
                !(std::abs(event.loss_dB) < kExtra_dB) && event.kind != DetectedEvent::Kind::Start;
            totals.extra += counts ? 1 : 0;
            if (counts || listsAll) {
                printFound(counts ? "EXTRA" : "small", event, metresOf(event));
            }
        }
    }

    const otdr::sor::File& file;
    otdr::Trace trace;
    otdr::Measurement measurement;
    bool listsAll;
    Totals& totals;
    otdr::Detection detection;
    std::vector<bool> taken;
    double tolerance_m = 0.0;
};

double quantile(std::vector<double> values, double part)
{
    if (values.empty()) {
        return 0.0;
    }
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
}

} // namespace

int main(int argc, char** argv)
{
    Totals totals;
    bool listsAll = false;
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (name == "--all") {
            listsAll = true;
            continue;
        }
        const auto file = otdr::readSorFile(name);
        std::printf("%s\n", name.substr(name.find_last_of('/') + 1).c_str());
        if (!file) {
            std::printf("  %s\n", file.error().message.c_str());
            continue;
        }
        Comparison(*file, listsAll, totals).run();
    }
    const auto& losses = totals.lossDifferences_dB;
    const auto within =
        std::count_if(losses.begin(), losses.end(), [](double d) { return d <= 0.005; });
    std::printf("\n%d traces, %d stored events, %d found (%.1f %%), %.2f extra a trace\n",
                totals.traces, totals.stored, totals.found,
                100.0 * totals.found / std::max(1, totals.stored),
                static_cast<double>(totals.extra) / std::max(1, totals.traces));
    std::printf("loss of %zu: median %.4f dB, 90 %% %.4f dB, within 5 mdB %.1f %%\n", losses.size(),
                quantile(losses, 0.5), quantile(losses, 0.9),
                100.0 * static_cast<double>(within)
                    / static_cast<double>(std::max<std::size_t>(1, losses.size())));
    return 0;
}
