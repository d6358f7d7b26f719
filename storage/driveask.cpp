#include "storage/driveask.h"

#include "storage/apart.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QList>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace Waveform {

namespace {

constexpr char kYes = 'y';
constexpr char kNo = 'n';

std::optional<bool> ask(const std::function<bool()>& question,
                        const std::function<bool()>& isGivenUp)
{
    const ToldApart told =
        doApart([&question] { return QByteArray(1, question() ? kYes : kNo); }, isGivenUp);
    return told.problem.isEmpty() ? std::optional(told.bytes == QByteArray(1, kYes)) : std::nullopt;
}

bool isDirectory(const QByteArray& path)
{
    struct stat info = {};
    return ::stat(path.constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

/// Each part of the path in turn; those that are there stay as they are.
bool makeParts(const QByteArray& path)
{
    constexpr mode_t kAsTheUserWants = 0777; // but what the mask of the process leaves out
    for (int end = path.indexOf('/', 1); end > 0; end = path.indexOf('/', end + 1)) {
        ::mkdir(path.left(end).constData(), kAsTheUserWants);
    }
    ::mkdir(path.constData(), kAsTheUserWants);
    return isDirectory(path);
}

} // namespace

std::optional<bool> isAnyThere(const QStringList& paths, const std::function<bool()>& isGivenUp)
{
    QList<QByteArray> names;
    for (const QString& path : paths) {
        names << QFile::encodeName(path);
    }
    const auto isThere = [](const QByteArray& name) {
        return ::access(name.constData(), F_OK) == 0;
    };
    return ask([&] { return std::any_of(names.cbegin(), names.cend(), isThere); }, isGivenUp);
}

std::optional<bool> makeDirectory(const QString& path, const std::function<bool()>& isGivenUp)
{
    const QByteArray name = QFile::encodeName(path);
    return ask([&name] { return isDirectory(name) || makeParts(name); }, isGivenUp);
}

std::function<bool()> patienceOf(int time_ms)
{
    return [end = QDeadlineTimer(time_ms)] {
        QCoreApplication::processEvents();
        return end.hasExpired();
    };
}

} // namespace Waveform
