#include "fuzz/samesor.h"

#include "fuzz/claim.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

namespace fuzz {

namespace {

namespace sor = otdr::sor;

std::string stored(const std::string& text)
{
    return text.empty() ? " " : text;
}

bool sameDistance(std::int32_t written, std::int32_t read)
{
    return written == 0 || written == read;
}

bool same(const sor::GenParams& a, const sor::GenParams& b)
{
    const auto values = [](const sor::GenParams& gen) {
        return std::tuple(gen.language, stored(gen.cableId), stored(gen.fibreId), gen.fibreType,
                          gen.wavelength_nm, stored(gen.locationA), stored(gen.locationB),
                          stored(gen.cableCode), gen.buildCondition, gen.userOffset,
                          stored(gen.operatorName), stored(gen.comment));
    };
    return values(a) == values(b) && sameDistance(a.userOffsetDistance, b.userOffsetDistance);
}

bool same(const sor::SupParams& a, const sor::SupParams& b)
{
    const auto values = [](const sor::SupParams& sup) {
        return std::tuple(stored(sup.supplier), stored(sup.mainframeId),
                          stored(sup.mainframeSerial), stored(sup.moduleId),
                          stored(sup.moduleSerial), stored(sup.softwareRevision),
                          stored(sup.other));
    };
    return values(a) == values(b);
}

bool same(const std::vector<sor::PulseEntry>& a, const std::vector<sor::PulseEntry>& b)
{
    const auto values = [](const sor::PulseEntry& pulse) {
        return std::tuple(pulse.width_ns, pulse.dataSpacing, pulse.samples);
    };
    const auto equal = [values](const sor::PulseEntry& one, const sor::PulseEntry& other) {
        return values(one) == values(other);
    };
    const std::vector<sor::PulseEntry> none(1);
    const auto& left = a.empty() ? none : a;
    const auto& right = b.empty() ? none : b;
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), equal);
}

bool same(const sor::FxdParams& a, const sor::FxdParams& b)
{
    const auto values = [](const sor::FxdParams& fxd) {
        return std::tuple(fxd.dateTime_s, fxd.distanceUnit, fxd.actualWavelength,
                          fxd.acquisitionOffset, fxd.groupIndex, fxd.backscatter, fxd.averages,
                          fxd.averagingTime, fxd.acquisitionRange, fxd.frontPanelOffset,
                          fxd.noiseFloor, fxd.noiseFloorScale, fxd.powerOffset, fxd.lossThreshold,
                          fxd.reflectanceThreshold, fxd.endThreshold, fxd.traceType, fxd.window);
    };
    return values(a) == values(b) && same(a.pulses, b.pulses)
        && sameDistance(a.acquisitionOffsetDistance, b.acquisitionOffsetDistance)
        && sameDistance(a.acquisitionRangeDistance, b.acquisitionRangeDistance);
}

bool same(const sor::KeyEvents& a, const sor::KeyEvents& b)
{
    const auto values = [](const sor::KeyEvent& event) {
        return std::tuple(event.number, event.position, event.attenuation, event.loss,
                          event.reflectance, event.code, event.technique, event.markers,
                          stored(event.comment));
    };
    const auto equal = [values](const sor::KeyEvent& left, const sor::KeyEvent& right) {
        return values(left) == values(right);
    };
    const auto figures = [](const sor::SpanSummary& span) {
        return std::tuple(span.totalLoss, span.lossStart, span.lossEnd, span.returnLoss,
                          span.returnLossStart, span.returnLossEnd);
    };
    return std::equal(a.events.begin(), a.events.end(), b.events.begin(), b.events.end(), equal)
        && figures(a.summary) == figures(b.summary);
}

bool same(const std::vector<sor::Landmark>& a, const std::vector<sor::Landmark>& b)
{
    const auto values = [](const sor::Landmark& mark) {
        return std::tuple(mark.number, mark.code, mark.position, mark.relatedEvent, mark.longitude,
                          mark.latitude, mark.fibreCorrection, mark.sheathEntering,
                          mark.sheathLeaving, mark.sheathUnit, mark.modeFieldDiameter,
                          stored(mark.comment));
    };
    const auto equal = [values](const sor::Landmark& left, const sor::Landmark& right) {
        return values(left) == values(right);
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), equal);
}

} // namespace

void claimSameValues(const sor::File& written, const sor::File& read)
{
    claim(same(written.gen, read.gen), "GenParams come back");
    claim(same(written.sup, read.sup), "SupParams come back");
    claim(same(written.fxd, read.fxd), "FxdParams come back");
    claim(same(written.keyEvents.value_or(sor::KeyEvents()),
               read.keyEvents.value_or(sor::KeyEvents())),
          "KeyEvents come back");
    claim(same(written.landmarks, read.landmarks), "LnkParams come back");
    claim(written.data.scaleFactor == read.data.scaleFactor, "the scale factor comes back");
    claim(written.data.samples == read.data.samples, "the samples come back");
}

} // namespace fuzz
