#include "app/handover.h"

#include "app/filename.h"
#include "app/localsocket.h"

#include <QDeadlineTimer>
#include <QThread>

namespace handover {

namespace {

const QByteArray kGreeting = "waveform open 1";

} // namespace

QString address(const QString& temporaryDir)
{
    return temporaryDir + "/waveform.socket";
}

QByteArray message(const QStringList& files)
{
    QByteArray bytes = kGreeting + '\0';
    for (const QString& file : files) {
        if (!file.isEmpty()) { // which would be the end
            bytes += filename::toRaw(file) + '\0';
        }
    }
    return bytes + '\0';
}

bool isComplete(const QByteArray& bytes)
{
    return bytes.endsWith(QByteArray(2, '\0'));
}

std::optional<QStringList> files(const QByteArray& bytes)
{
    if (!isComplete(bytes) || bytes.size() > kMostBytes) {
        return std::nullopt;
    }
    QList<QByteArray> words = bytes.left(bytes.size() - 2).split('\0');
    if (words.takeFirst() != kGreeting || words.contains(QByteArray())) {
        return std::nullopt;
    }
    QStringList names;
    for (const QByteArray& word : qAsConst(words)) {
        names << filename::fromRaw(word);
    }
    return names;
}

bool send(const QString& address, const QStringList& files, std::chrono::milliseconds patience)
{
    constexpr unsigned long kRetry_ms = 50;
    const QDeadlineTimer deadline(patience);
    const auto left = [&] { return std::chrono::milliseconds(deadline.remainingTime()); };
    LocalSocket socket = LocalSocket::connectTo(address, left());
    while (!socket.isOpen()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QThread::msleep(kRetry_ms); // it has the lock, and will listen in a moment
        socket = LocalSocket::connectTo(address, left());
    }
    QByteArray answer;
    bool goesOn = socket.write(message(files));
    while (goesOn && answer.size() < kTaken.size() && !deadline.hasExpired()) {
        socket.setPatience(left());
        goesOn = socket.read(answer, kTaken.size()) == LocalSocket::Got::Bytes;
    }
    return answer == kTaken;
}

} // namespace handover
