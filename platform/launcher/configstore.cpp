#include "platform/launcher/configstore.h"

#include "platform/launcher/launcherlog.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QSet>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>

#include <sys/stat.h>

#include <array>
#include <optional>

namespace configstore {

namespace {

/// By which a file is known to be the one that was read: whoever writes to it, or puts another in
/// its place, changes one of these.
using Stamp = std::array<qint64, 7>;

struct FileContent
{
    Stamp stamp {};
    QVariantMap values;
};

/// What this process knows besides the files.
struct Process
{
    QHash<QString, QVariantMap> thisRun; // by module
    QHash<QString, QVariantMap> unwritten; // by file name
    QHash<QString, FileContent> read; // by file name
    QSet<QString> complained; // files about which the log has been told
};

Process& process()
{
    static Process known;
    return known;
}

void complainOnce(const QString& file, const QString& what)
{
    if (!process().complained.contains(file)) {
        process().complained.insert(file);
        qCWarning(launcherLog).noquote() << what << file;
    }
}

void addAll(QVariantMap& map, const QVariantMap& more)
{
    for (auto it = more.constBegin(); it != more.constEnd(); ++it) {
        map.insert(it.key(), it.value());
    }
}

/// A file that somebody edited may hold a bare comma, which reads as a list.
QString textOf(const QVariant& value)
{
    return value.userType() == QMetaType::QStringList ? value.toStringList().join(QLatin1Char(','))
                                                      : value.toString();
}

std::optional<Stamp> stampOf(const QString& file)
{
    struct stat info = {};
    if (::stat(QFile::encodeName(file).constData(), &info) != 0) {
        return std::nullopt;
    }
    return Stamp {qint64(info.st_dev),          qint64(info.st_ino),
                  qint64(info.st_size),         qint64(info.st_mtim.tv_sec),
                  qint64(info.st_mtim.tv_nsec), qint64(info.st_ctim.tv_sec),
                  qint64(info.st_ctim.tv_nsec)};
}

QVariantMap parseFile(const QString& file)
{
    QSettings settings(file, QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    QVariantMap map;
    const QStringList keys = settings.allKeys();
    for (const QString& key : keys) {
        map.insert(key, textOf(settings.value(key)));
    }
    // Sections are parsed when they are first read: only now is all known.
    if (settings.status() == QSettings::FormatError) {
        complainOnce(file, QStringLiteral("damaged lines are ignored in"));
    }
    return map;
}

/// A window that opens asks some fifty times: the file is looked at each time, parsed when it has
/// changed.
QVariantMap readFile(const QString& file)
{
    const std::optional<Stamp> stamp = stampOf(file); // before: what is written meanwhile is newer
    if (!stamp) {
        process().read.remove(file);
        return {};
    }
    FileContent& content = process().read[file];
    if (content.stamp != *stamp) {
        content = {*stamp, parseFile(file)};
    }
    return content.values;
}

QVariantMap behind(const QString& module)
{
    const QString file = fileName(module);
    QVariantMap map = readFile(file);
    addAll(map, process().unwritten.value(file));
    return map;
}

bool writeFile(const QString& file, const QVariantMap& values)
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    // QSettings writes to a temporary file, flushes it and renames it over the old one.
    QSettings settings(file, QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    for (auto it = values.constBegin(); it != values.constEnd(); ++it) {
        settings.setValue(it.key(), textOf(it.value()));
    }
    settings.sync();
    process().read.remove(file); // two writes within a tick of its clock may look the same
    // Damaged lines that were read before are dropped by the writing: no failure.
    return settings.status() != QSettings::AccessError;
}

} // namespace

QString directory()
{
    const QString named = QFile::decodeName(qgetenv("XDG_CONFIG_HOME"));
    const QString base = QDir::isAbsolutePath(named)
        ? named
        : QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return QDir::cleanPath(base + QStringLiteral("/waveform"));
}

QString fileName(const QString& module)
{
    return directory() + QLatin1Char('/') + module + QStringLiteral(".ini");
}

QVariant value(const QString& module, const QString& path)
{
    return values(module).value(path);
}

QVariantMap values(const QString& module)
{
    QVariantMap map = behind(module);
    addAll(map, process().thisRun.value(module));
    return map;
}

QVariant stored(const QString& module, const QString& path)
{
    return behind(module).value(path);
}

bool store(const QString& module, const QVariantMap& values)
{
    QVariantMap& given = process().thisRun[module];
    for (auto it = values.constBegin(); it != values.constEnd(); ++it) {
        given.remove(it.key());
    }
    return storeBehind(module, values);
}

bool storeBehind(const QString& module, const QVariantMap& values)
{
    const QString file = fileName(module);
    QVariantMap pending = process().unwritten.take(file);
    for (auto it = values.constBegin(); it != values.constEnd(); ++it) {
        pending.insert(it.key(), textOf(it.value()));
    }
    if (writeFile(file, pending)) {
        return true;
    }
    process().unwritten.insert(file, pending);
    complainOnce(file, QStringLiteral("settings cannot be written to"));
    return false;
}

void setForThisRun(const QString& module, const QString& path, const QVariant& value)
{
    process().thisRun[module].insert(path, textOf(value));
}

void clearThisRun()
{
    process().thisRun.clear();
}

} // namespace configstore
