#include "platform/launcher/programs.h"

#include <QDir>
#include <QFile>

QString programPath(const QString& name)
{
    const QString named = QFile::decodeName(qgetenv("WAVEFORM_PROGRAMS"));
    const QDir dir(named.isEmpty() ? QStringLiteral("/usr/local/bin") : named);
    return dir.absoluteFilePath(name);
}
