#include "tests/platform/otdr/core/detectionlinks.h"

#include "tests/support/tracebuilder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <utility>

namespace testing_support {

namespace {

constexpr double kBackscatter_dB = -80.0;

/// The trace behind a receiver of one pole: light that comes stays for some samples.
std::vector<std::uint16_t> slowed(std::vector<std::uint16_t> counts, double samples)
{
    const auto lightOf = [](std::uint16_t count) {
        const double level_dB = (otdr::kNoSignal - count) * otdr::kUsualDbPerCount;
        return count == otdr::kNoSignal ? 0.0 : std::pow(10.0, level_dB / 5.0);
    };
    double power = lightOf(counts.front());
    for (std::uint16_t& count : counts) {
        power += (lightOf(count) - power) / (1.0 + samples);
        const double slow_dB = power > 0.0 ? 5.0 * std::log10(power) : 0.0;
        const double raw = std::round(otdr::kNoSignal - slow_dB / otdr::kUsualDbPerCount);
        count = static_cast<std::uint16_t>(std::clamp(raw, 0.0, 65535.0));
    }
    return counts;
}

/// How a trace was taken.
struct Taking
{
    double interval_ns = 10.0; ///< these two as a builder begins with
    double pulse_ns = 100.0;
    double slowness = 0.0; ///< time constant of the receiver, samples
    std::size_t front = 0; ///< samples before 0 m
};

class Links
{
public:
    void add(const std::string& name, const TraceBuilder& builder, const Taking& taking = {})
    {
        std::vector<std::uint16_t> counts = builder.counts();
        if (taking.slowness > 0.0) {
            counts = slowed(std::move(counts), taking.slowness);
        }
        const double front_ns = taking.interval_ns * static_cast<double>(taking.front);
        auto trace =
            std::make_shared<const otdr::Trace>(otdr::RawSamples(counts), otdr::kUsualDbPerCount,
                                                otdr::TraceAxis {taking.interval_ns, -front_ns});
        all.push_back({name, trace, {taking.pulse_ns, builder.metresPerNs(), kBackscatter_dB}});
    }

    std::vector<DetectionLink> all;
};

TraceBuilder link(Length length, std::uint64_t seed, Decibels noise = 0.02_dB)
{
    return TraceBuilder().fibre(length).behind(1500).noise(noise, seed).noiseFloor(8_dB);
}

TraceBuilder longPulses(std::uint64_t seed)
{
    return link(16_km, seed, 0.01_dB).sampling(20.0).pulse(1000.0);
}

void addPlainLinks(Links& links)
{
    links.add("bare", link(5_km, 1));
    links.add("splices",
              link(10_km, 2)
                  .splice(1_km, 0.03_dB)
                  .splice(2.5_km, 0.1_dB)
                  .splice(4_km, Decibels {-0.2})
                  .splice(5_km, 0.5_dB)
                  .splice(5.1_km, 0.2_dB)
                  .splice(8_km, 0.06_dB));
    links.add("connectors",
              link(10_km, 3)
                  .reflection(0_m, 14_dB)
                  .connector(1_km, 0.3_dB, 0.5_dB)
                  .connector(2_km, 0.2_dB, 4_dB)
                  .connector(2.3_km, 0.4_dB, 11_dB)
                  .reflection(6_km, 2_dB)
                  .connector(8_km, 0.1_dB, 16_dB)
                  .reflection(9.99_km, 15_dB));
    links.add("echo",
              link(9_km, 4)
                  .reflection(0_m, 12_dB)
                  .connector(2_km, 0.2_dB, 15_dB)
                  .reflection(4_km, 1_dB)
                  .connector(5_km, 0.3_dB, 9_dB)
                  .reflection(8.99_km, 10_dB));
    links.add("splitter", link(6_km, 5).splice(3_km, 7_dB).connector(4_km, 0.3_dB, 8_dB));
    links.add("beyond the record",
              TraceBuilder().fibre(8_km).noise(0.03_dB, 6).splice(3_km, 0.2_dB));
    links.add("user's zero", link(4_km, 7).front(300).reflection(0_m, 10_dB).splice(2_km, 0.2_dB),
              {10.0, 100.0, 0.0, 300});
    links.add(
        "noisy",
        link(9_km, 8, 0.2_dB).launch(24_dB).splice(3_km, 0.8_dB).connector(6_km, 0.5_dB, 5_dB));
}

void addCrowds(Links& links)
{
    links.add("within a dead zone",
              link(6_km, 9)
                  .connector(2_km, 0.2_dB, 10_dB)
                  .connector(2.006_km, 0.1_dB, 13_dB)
                  .connector(4_km, 0.3_dB, 6_dB)
                  .connector(4.015_km, 0.2_dB, 5_dB)
                  .connector(4.03_km, 0.2_dB, 9_dB));
    links.add("pairs",
              longPulses(10)
                  .splice(5_km, 0.3_dB)
                  .splice(5.15_km, 0.4_dB)
                  .splice(10_km, 0.6_dB)
                  .splice(10.25_km, Decibels {-0.3}),
              {20.0, 1000.0});
    links.add("saturated",
              link(6_km, 11)
                  .connector(2_km, 0.3_dB, 30_dB)
                  .splice(2.1_km, 0.2_dB)
                  .reflection(5.99_km, 30_dB));
    // The search would go on changing its mind about the pair.
    links.add("unsettled",
              link(3_km, 24).splice(570_m, 0.35_dB).splice(826_m, 0.15_dB).splice(846_m, 0.35_dB));
    links.add("two ends", link(3_km, 12).reflection(2.96_km, 12_dB).reflection(2.99_km, 9_dB));
}

void addReceivers(Links& links)
{
    links.add("slow receiver",
              link(8_km, 13)
                  .reflection(0_m, 12_dB)
                  .splice(1.5_km, 0.3_dB)
                  .connector(3_km, 0.2_dB, 12_dB)
                  .connector(3.05_km, 0.2_dB, 6_dB)
                  .splice(6_km, Decibels {-0.15})
                  .reflection(7.99_km, 20_dB),
              {10.0, 100.0, 6.0});
    links.add("slow end", link(5_km, 14).reflection(4.98_km, 18_dB), {10.0, 100.0, 12.0});
    links.add("long pulses",
              longPulses(15)
                  .reflection(0_m, 8_dB)
                  .splice(3_km, 0.2_dB)
                  .connector(6_km, 0.3_dB, 3_dB)
                  .connector(9_km, 0.3_dB, 0.3_dB)
                  .splice(12_km, 0.08_dB),
              {20.0, 1000.0, 8.0});
    links.add("a pulse of one sample",
              link(6_km, 16).pulse(10.0).connector(2_km, 0.2_dB, 7_dB).splice(4_km, 0.3_dB),
              {10.0, 10.0});
    links.add("without noise",
              TraceBuilder().fibre(4_km).splice(1_km, 0.1_dB).connector(2_km, 0.2_dB, 5_dB));
}

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof(text), " %.6g", value);
    return text;
}

std::string lineOf(const otdr::Line& line, double at)
{
    return " [" + std::to_string(line.samples) + number(line.samples > 0 ? line.at(at) : 0.0)
        + number(line.slope_dB) + " ]";
}

std::string textOf(const otdr::DetectedEvent& event)
{
    std::string text = std::string(1, "srnpe"[static_cast<int>(event.kind)]) + " "
        + std::string(1, "plktfr"[static_cast<int>(event.evidence)]);
    for (const double value :
         {event.index, event.loss_dB, event.lossError_dB, event.reflectance_dB, event.height_dB,
          event.stepStatistic, event.peakStatistic, event.behindFrom}) {
        text += number(value);
    }
    text += std::string(event.saturated() ? " saturated" : "") + (event.echo ? " echo" : "");
    return text + " group " + std::to_string(event.group) + lineOf(event.before, event.index)
        + lineOf(event.behind, event.index);
}

} // namespace

std::vector<DetectionLink> detectionLinks()
{
    Links links;
    addPlainLinks(links);
    addCrowds(links);
    addReceivers(links);
    return links.all;
}

std::vector<std::string> figuresOf(const DetectionLink& link)
{
    const otdr::Detection found = otdr::detectEvents(*link.trace, link.measurement);
    std::vector<std::string> lines;
    const std::string name = link.name + ": ";
    lines.push_back(name + "span" + number(found.noiseFloor_dB) + number(found.end)
                    + number(found.spanLoss_dB) + number(found.returnLoss_dB));
    for (const otdr::DetectedEvent& event : found.events) {
        lines.push_back(name + textOf(event));
    }
    for (const otdr::DetectedSection& section : found.sections) {
        lines.push_back(name + "section" + number(section.from) + number(section.to)
                        + number(section.loss_dB) + number(section.attenuation_dBPerKm)
                        + number(section.returnLoss_dB));
    }
    return lines;
}

} // namespace testing_support
