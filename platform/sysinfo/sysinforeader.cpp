#include "platform/sysinfo/sysinforeader.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

namespace {

constexpr qint64 kLargestFile = 65536;

QString valueOf(const QString& fileName, const QStringList& keys)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray bytes = file.read(kLargestFile + 1);
    if (bytes.size() > kLargestFile) {
        return {};
    }
    static const QRegularExpression line(QStringLiteral("^([^:=]*)[:=](.*)$"));
    const QStringList lines = QString::fromUtf8(bytes).split(QLatin1Char('\n'));
    for (const QString& text : lines) {
        const QRegularExpressionMatch match = line.match(text.trimmed());
        if (match.hasMatch() && keys.contains(match.captured(1).trimmed(), Qt::CaseInsensitive)) {
            return match.captured(2).trimmed();
        }
    }
    return {};
}

} // namespace

QString SysinfoReader::hwrev(const QString& file)
{
    return valueOf(file, {QStringLiteral("hwrev"), QStringLiteral("revision")});
}

QString SysinfoReader::serial(const QString& file)
{
    return valueOf(file, {QStringLiteral("serial")});
}

QString SysinfoReader::releaseVersion()
{
    return QStringLiteral(WAVEFORM_VERSION);
}
