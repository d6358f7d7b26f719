#include "platform/otdr/errorwords.h"

#include "platform/otdr/core/snapshot.h"

#include <QCoreApplication>

namespace {

/// What the numeric library, which knows no languages, can say of a file that it does not read.
/// Where one ends with another, the longer stands first.
constexpr const char* kMessages[] = {
    QT_TRANSLATE_NOOP("TraceError", "the file is empty"),
    QT_TRANSLATE_NOOP("TraceError", "too short for a trace file"),
    QT_TRANSLATE_NOOP("TraceError", "not a trace file: there is no map of blocks at its start"),
    QT_TRANSLATE_NOOP("TraceError", "not a trace file: its start is no map of blocks"),
    QT_TRANSLATE_NOOP("TraceError", "the file ends within its map of blocks"),
    QT_TRANSLATE_NOOP("TraceError", "the map names a block with an impossible name"),
    QT_TRANSLATE_NOOP("TraceError", "the map claims too many blocks"),
    QT_TRANSLATE_NOOP("TraceError", "no trace: the file holds no samples"),
    QT_TRANSLATE_NOOP("TraceError", "larger than 64 MiB, which no trace file is"),
    QT_TRANSLATE_NOOP("TraceError", "not a regular file"),
    QT_TRANSLATE_NOOP("TraceError", "not a snapshot: no \"WFPK\" at the front"),
    QT_TRANSLATE_NOOP("TraceError", "snapshot: unknown version"),
    QT_TRANSLATE_NOOP("TraceError", "snapshot: impossible header size"),
    QT_TRANSLATE_NOOP("TraceError", "snapshot: the length of the file is not that of its samples"),
    QT_TRANSLATE_NOOP("TraceError", "snapshot: impossible sample interval"),
    QT_TRANSLATE_NOOP("TraceError", "snapshot: impossible time of the first sample"),
    QT_TRANSLATE_NOOP("TraceError", "snapshot: no counts per dB"),
    QT_TRANSLATE_NOOP("TraceError", "snapshot: the file ends inside its header"),
    QT_TRANSLATE_NOOP("TraceError", "snapshot: more than %1 samples"),
    QT_TRANSLATE_NOOP("TraceError", "snapshot: the checksum does not fit the samples"),
    QT_TRANSLATE_NOOP("TraceError", "cannot be opened"),
    QT_TRANSLATE_NOOP("TraceError", "cannot be read"),
    QT_TRANSLATE_NOOP("TraceError", "no bytes"),
    QT_TRANSLATE_NOOP("TraceError", "out of memory"),
};

/// The one number that a message tells.
QString withMostSamples(QString text)
{
    return text.replace("%1", QString::number(otdr::Snapshot::kMostSamples));
}

} // namespace

QString errorWords(const QString& message)
{
    for (const char* known : kMessages) {
        const QString text = withMostSamples(QString::fromLatin1(known));
        if (message == text || message.endsWith(": " + text)) {
            return message.chopped(text.size())
                + withMostSamples(QCoreApplication::translate("TraceError", known));
        }
    }
    return message;
}
