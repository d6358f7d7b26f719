#include "platform/otdr/reflectogram.h"

#include "platform/otdr/core/atomicfile.h"
#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/snapshot.h"
#include "platform/otdr/core/sorwriter.h"
#include "platform/otdr/detectedevents.h"
#include "platform/otdr/tracefigures.h"
#include "platform/otdr/traceloader.h"
#include "platform/otdr/tracesaver.h"
#include "platform/otdr/tracestate.h"

#include <QFile>

#include <cmath>
#include <mutex>
#include <utility>

/// The one place where a trace changes: the state is replaced whole, under a lock that is held for
/// no longer.
class Reflectogram::Shared
{
public:
    [[nodiscard]] std::shared_ptr<const TraceState> get() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return state;
    }

    void set(TraceState next)
    {
        auto made = std::make_shared<const TraceState>(std::move(next));
        const std::lock_guard<std::mutex> lock(mutex);
        state.swap(made); // the old state dies after the lock
    }

    /// Lets change work on a copy of the state; false from it leaves things as they are.
    template <typename Change>
    bool update(Change change)
    {
        std::shared_ptr<const TraceState> old;
        const std::lock_guard<std::mutex> lock(mutex);
        TraceState next = *state;
        if (!change(next)) {
            return false;
        }
        old = std::exchange(state, std::make_shared<const TraceState>(std::move(next)));
        return true;
    }

    /// The search goes on outside of the lock: who comes meanwhile searches, too.
    [[nodiscard]] std::shared_ptr<const otdr::Detection> detection()
    {
        const std::shared_ptr<const TraceState> now = get();
        if (!now->trace) {
            return nullptr;
        }
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (searched == now) {
                return found;
            }
        }
        auto made = std::make_shared<const otdr::Detection>(detectionOf(*now));
        const std::lock_guard<std::mutex> lock(mutex);
        searched = now;
        found = made;
        return made;
    }

private:
    mutable std::mutex mutex;
    std::shared_ptr<const TraceState> state = std::make_shared<const TraceState>();
    std::shared_ptr<const TraceState> searched; ///< what the events below were found on
    std::shared_ptr<const otdr::Detection> found;
};

qint64 Reflectogram::largestSnapshot_bytes()
{
    return otdr::Snapshot::kHeaderSize + qint64 {2} * otdr::Snapshot::kMostSamples;
}

Reflectogram::Reflectogram() = default;

Reflectogram::Reflectogram(const QString& fileName)
{
    load(fileName, nullptr, false);
}

Reflectogram::Reflectogram(const QString& fileName, const WfMeasParams& params)
{
    load(fileName, &params, true);
}

bool Reflectogram::updateFromFile(const QString& fileName, const WfMeasParams& params)
{
    return load(fileName, &params, false);
}

bool Reflectogram::load(const QString& fileName, const WfMeasParams* params, bool asMeasurement)
{
    if (!shared) {
        shared = std::make_shared<Shared>();
    }
    auto loaded = loadTrace(fileName, params);
    if (!loaded) {
        const QString reason = QString::fromStdString(loaded.error().message);
        shared->update([&](TraceState& state) {
            state.fileName = state.trace ? state.fileName : fileName;
            state.error = reason;
            state.measured = state.measured || asMeasurement;
            return true;
        });
        return false;
    }
    loaded->measured = asMeasurement || shared->get()->measured;
    shared->set(std::move(*loaded));
    return true;
}

std::shared_ptr<const TraceState> Reflectogram::state() const
{
    return shared ? shared->get() : nullptr;
}

std::shared_ptr<const otdr::Detection> Reflectogram::detection() const
{
    return shared ? shared->detection() : nullptr;
}

std::shared_ptr<const otdr::Trace> Reflectogram::trace() const
{
    const auto now = state();
    return now ? now->trace : nullptr;
}

bool Reflectogram::isValid() const
{
    const auto now = trace();
    return now && now->size() > 0;
}

QString Reflectogram::fileName() const
{
    const auto now = state();
    return now ? now->fileName : QString();
}

QString Reflectogram::error() const
{
    const auto now = state();
    return now ? now->error : QString();
}

QStringList Reflectogram::notes() const
{
    const auto now = state();
    return now ? now->notes : QStringList();
}

bool Reflectogram::isMeasured() const
{
    const auto now = state();
    return now && now->measured;
}

int Reflectogram::wavelength() const
{
    const auto now = state();
    return now ? now->wavelength_nm : 0;
}

double Reflectogram::pulseWidth() const
{
    const auto now = state();
    return now ? now->pulse_ns : 0.0;
}

double Reflectogram::endOfFiber() const
{
    const auto now = state();
    return now ? now->endOfFibre_m() : -1.0;
}

bool Reflectogram::hasDistances() const
{
    const auto now = state();
    return !now || now->hasDistances();
}

double Reflectogram::maxdist() const
{
    const auto now = state();
    if (!now || !now->trace || now->trace->size() == 0) {
        return 0.0;
    }
    return now->trace->distanceAt(static_cast<double>(now->trace->size() - 1), now->metresPerNs());
}

double Reflectogram::dataSpacing() const
{
    const auto now = trace();
    return now ? now->axis().sampleInterval_ns : 0.0;
}

double Reflectogram::smpl2dist(double samples) const
{
    const auto now = state();
    return now && now->trace ? samples * now->trace->axis().sampleInterval_ns * now->metresPerNs()
                             : 0.0;
}

float Reflectogram::powerAtDist(double distance_m) const
{
    const auto now = state();
    return now && now->trace ? static_cast<float>(now->trace->levelAt_dB(now->indexAt(distance_m)))
                             : 0.0F;
}

double Reflectogram::IOR() const
{
    const auto now = state();
    return now ? now->ior : WfMeasParams().ior;
}

double Reflectogram::helix() const
{
    const auto now = state();
    return now ? now->helix_percent : 0.0;
}

namespace {

/// Gives the axis of a trace another scale; what is kept in metres follows.
template <typename Change>
bool rescale(TraceState& state, Change change)
{
    const double before = state.metresPerNs();
    change(state);
    const double ratio = state.metresPerNs() / before;
    for (Event& event : state.events) {
        event.coordinate *= ratio;
        event.width *= ratio;
        event.length *= ratio;
        event.beforeFrom *= ratio;
        event.behindFrom *= ratio;
        event.behindTo *= ratio;
        event.attenuationBefore /= ratio;
    }
    return ratio != 1.0;
}

} // namespace

void Reflectogram::setIOR(double ior)
{
    if (shared && std::isfinite(ior) && ior >= 1.0) {
        shared->update([&](TraceState& state) {
            return rescale(state, [&](TraceState& next) { next.ior = ior; });
        });
    }
}

void Reflectogram::setHelix(double helix_percent)
{
    if (shared && std::isfinite(helix_percent) && helix_percent > -100.0) {
        shared->update([&](TraceState& state) {
            return rescale(state, [&](TraceState& next) { next.helix_percent = helix_percent; });
        });
    }
}

EventList Reflectogram::getEventList() const
{
    const auto now = state();
    return now ? now->events : EventList();
}

void Reflectogram::setEventList(const EventList& events, int processing)
{
    if (shared) {
        shared->update([&](TraceState& state) {
            state.events = events;
            state.processing = processing;
            return true;
        });
    }
}

WfMeasParams Reflectogram::parameters() const
{
    WfMeasParams params;
    if (const auto now = state()) {
        params.ior = now->ior;
        params.helix = now->helix_percent;
        params.distance = now->range_m;
        params.wavelength = static_cast<quint16>(now->wavelength_nm);
        params.pulse = static_cast<quint16>(std::lround(now->pulse_ns));
        params.rbs = now->backscatter_dB;
        params.duration = now->duration_s;
    }
    return params;
}

QString Reflectogram::paramsToString() const
{
    if (!isValid()) {
        return {};
    }
    const WfMeasParams params = parameters();
    // A file that does not tell one of them has 0 there.
    const auto told = [](int number) {
        return number > 0 ? QString::number(number) : QString("-");
    };
    return QString("%1 nm, %2 ns, %3 s, IOR %4")
        .arg(told(params.wavelength), told(params.pulse), told(params.duration))
        .arg(params.ior, 0, 'f', 4);
}

std::shared_ptr<const SorData> Reflectogram::sorData() const
{
    const auto now = state();
    return now && now->trace ? now->sor : nullptr;
}

void Reflectogram::setSupParams(const SupParamsBlock& params)
{
    if (shared) {
        shared->update([&](TraceState& state) {
            auto sor =
                state.sor ? std::make_shared<SorData>(*state.sor) : std::make_shared<SorData>();
            sor->setSupParams(params);
            state.sor = std::move(sor);
            state.supParamsChanged = true;
            return true;
        });
    }
}

void Reflectogram::fillOrl()
{
    if (!shared) {
        return;
    }
    bool done = false;
    while (!done) {
        const auto before = shared->get();
        const KeyEventsBlock block = keyFigures(*before);
        // A trace that was refreshed or got other events meanwhile wants its own figures.
        done = shared->update([&](TraceState& state) {
            if (state.trace != before->trace || state.events != before->events) {
                return false;
            }
            auto sor =
                state.sor ? std::make_shared<SorData>(*state.sor) : std::make_shared<SorData>();
            sor->setKeyEvents(block);
            state.sor = std::move(sor);
            return true;
        });
    }
}

/// Those that are not there yet: a trace may be saved more than once.
void Reflectogram::addNotes(const std::vector<std::string>& more)
{
    shared->update([&](TraceState& state) {
        const int before = state.notes.size();
        for (const std::string& note : more) {
            const QString text = QString::fromStdString(note);
            if (!state.notes.contains(text)) {
                state.notes << text;
            }
        }
        return state.notes.size() > before;
    });
}

int Reflectogram::save(const QString& fileName, QString* saveError)
{
    const auto fail = [&](const std::string& why) {
        if (saveError != nullptr) {
            *saveError = QString::fromStdString(why);
        }
        return -1;
    };
    const auto now = state();
    if (!now || !now->trace || now->trace->size() == 0) {
        return fail("there is no trace to save");
    }
    std::vector<std::string> leftOut;
    const auto bytes = otdr::encodeSor(toSorFile(*now), &leftOut);
    if (!bytes) {
        return fail(bytes.error().message);
    }
    const auto written =
        otdr::writeFileAtomically(QFile::encodeName(fileName).toStdString(), *bytes);
    if (!written) {
        return fail(written.error().message);
    }
    addNotes(leftOut);
    return 0;
}

bool operator==(const Reflectogram& a, const Reflectogram& b)
{
    return a.shared == b.shared;
}
