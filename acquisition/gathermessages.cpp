#include "acquisition/gathermessages.h"

#include <QString>

QStringList gatherMessages(const QByteArray& bytes)
{
    QString text = QString::fromUtf8(bytes.constData());
    text.replace('\n', ' ').replace('\r', ' ');
    return text.split(';', Qt::SkipEmptyParts);
}
