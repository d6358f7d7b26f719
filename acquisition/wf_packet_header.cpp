#include "platform/otdr/wf_packet_header.h"

#include <QDebug>
#include <QFile>

void wf_packet_header::initFrom(QString fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        qDebug() << "void wf_packet_header::initFrom(QString)" << "Can't open reflectogram file '"
                 << fileName << "'" << "error = " << static_cast<int>(file.error());
        return;
    }
    if (file.read(reinterpret_cast<char*>(this), sizeof(*this)) != sizeof(*this)) {
        qDebug() << "void wf_packet_header::initFrom(QString)" << "Can't read header from file '"
                 << fileName << "'";
    }
}
