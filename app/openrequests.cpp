#include "app/openrequests.h"

#include "app/handover.h"

#include <QFile>
#include <QSocketNotifier>

#include <cerrno>
#include <cstring>
#include <utility>

namespace {

/// Somebody who called, until all has been said.
class Caller : public QObject
{
public:
    Caller(LocalSocket calling, OpenRequests* ear)
        : QObject(ear)
        , requests(ear)
        , socket(std::move(calling))
        , speaks(socket.descriptor(), QSocketNotifier::Read)
    {
        connect(&speaks, &QSocketNotifier::activated, this, [this] { hear(); });
    }

private:
    void hear()
    {
        const LocalSocket::Got got = socket.read(said, handover::kMostBytes + 1 - said.size());
        const bool mayGoOn = said.size() <= handover::kMostBytes && !handover::isComplete(said);
        if (got == LocalSocket::Got::NothingYet || (got == LocalSocket::Got::Bytes && mayGoOn)) {
            return; // the rest is on its way
        }
        speaks.setEnabled(false);
        deleteLater();
        if (const auto files = handover::files(said)) {
            (void)socket.write(handover::kTaken); // who no longer waits has asked all the same
            emit requests->requested(*files);
        }
    }

    OpenRequests* requests;
    LocalSocket socket;
    QSocketNotifier speaks;
    QByteArray said;
};

} // namespace

OpenRequests::OpenRequests(QObject* parent)
    : QObject(parent)
{
}

OpenRequests::~OpenRequests()
{
    if (ear.isOpen()) {
        QFile::remove(listensAt);
    }
}

QString OpenRequests::listen(const QString& address)
{
    listensAt = address;
    QFile::remove(address);
    ear = LocalSocket::listenAt(address);
    if (!ear.isOpen()) {
        return QString::fromLocal8Bit(std::strerror(errno));
    }
    calls = std::make_unique<QSocketNotifier>(ear.descriptor(), QSocketNotifier::Read);
    connect(calls.get(), &QSocketNotifier::activated, this, &OpenRequests::welcome);
    return {};
}

void OpenRequests::welcome()
{
    for (LocalSocket caller = ear.accept(); caller.isOpen(); caller = ear.accept()) {
        new Caller(std::move(caller), this);
    }
}
