// Messages of the acquisition program, in chunks as reads may deliver them: the controller takes
// them all, and every signal comes after what it needs. A byte 0xFF divides the chunks.
#include "acquisition/gathermessages.h"
#include "acquisition/otdrmeascontroller.h"
#include "fuzz/claim.h"
#include "platform/otdr/otdr.h"
#include "platform/otdr/reflectogram.h"

#include <QByteArray>
#include <QMetaObject>

#include <cstdint>

namespace {

using fuzz::claim;

constexpr char kChunkEnd = '\xFF'; // in no text of UTF-8

/// Takes what the signals carry, as the model does.
class Listener
{
public:
    explicit Listener(OtdrMeasController& controller)
    {
        QObject::connect(
            &controller, &OtdrMeasController::wfEventFound, &controller, [](const QString& event) {
                claim(!event.contains(';'), "an event does not reach into the next message");
                (void)OTDR::createEventFromString(event, Reflectogram()).toString();
            });
        QObject::connect(&controller, QOverload<QVariantMap&>::of(&OtdrMeasController::measTick),
                         &controller, [this](QVariantMap& data) {
                             claim(data.contains("RT") == hasTicked,
                                   "the remaining time comes before its map");
                             hasTicked = false;
                         });
        QObject::connect(&controller, QOverload<int, int>::of(&OtdrMeasController::measTick),
                         &controller, [this](int, int) { hasTicked = true; });
    }

private:
    bool hasTicked = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    OtdrMeasController controller(nullptr);
    const Listener listener(controller);
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    for (const QByteArray& chunk : input.split(kChunkEnd)) {
        for (const QString& message : gatherMessages(chunk)) {
            claim(!message.contains(';') && !message.contains('\n') && !message.contains('\r'),
                  "a message is one line without the separator");
            claim(QMetaObject::invokeMethod(&controller, "preprocessMsg", Q_ARG(QString, message)),
                  "the controller takes a message");
        }
    }
    claim(!controller.running(), "messages alone start nothing");
    return 0;
}
