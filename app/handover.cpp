#include "app/handover.h"

#include "app/filename.h"

#include <QDeadlineTimer>
#include <QLocalSocket>
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
    QLocalSocket socket;
    socket.connectToServer(address);
    while (!socket.waitForConnected(static_cast<int>(deadline.remainingTime()))) {
        if (deadline.hasExpired()) {
            return false;
        }
        QThread::msleep(kRetry_ms); // it has the lock, and will listen in a moment
        socket.connectToServer(address);
    }
    socket.write(message(files));
    QByteArray answer;
    while (answer.size() < int(sizeof kTaken) - 1
           && socket.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
        answer += socket.readAll();
    }
    return answer == kTaken;
}

} // namespace handover
