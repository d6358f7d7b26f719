#include "storage/configfile.h"

#include <QDataStream>
#include <QFile>

namespace Waveform {

bool writeConfigFile(const QString& fileName, const QVariantMap& map)
{
    QFile file(fileName);
    // QFile warns about an empty name.
    if (fileName.isEmpty() || !file.open(QIODevice::WriteOnly)) {
        return false;
    }
    QDataStream stream(&file);
    stream << map;
    return stream.status() == QDataStream::Ok && file.flush();
}

QVariantMap readConfigFile(const QString& fileName)
{
    QVariantMap map;
    QFile file(fileName);
    if (file.open(QIODevice::ReadOnly)) {
        QDataStream stream(&file);
        stream >> map;
    }
    return map;
}

} // namespace Waveform
