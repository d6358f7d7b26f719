#include "platform/otdr/wf_packet_header.h"

#include <QDebug>
#include <QFile>

void wf_packet_header::initFrom(QString fileName)
{
    QFile file(fileName);
    // QFile warns about an empty name, which is the usual way to say "none yet".
    const bool opened = !fileName.isEmpty() && file.open(QIODevice::ReadOnly);
    if (!opened) {
        const auto error = fileName.isEmpty() ? QFile::OpenError : file.error();
        qDebug() << "void wf_packet_header::initFrom(QString)"
                 << "Can't open reflectogram file '" << fileName << "'"
                 << "error = " << static_cast<int>(error);
        return;
    }
    if (file.read(reinterpret_cast<char*>(this), sizeof(*this)) != sizeof(*this)) {
        qDebug() << "void wf_packet_header::initFrom(QString)"
                 << "Can't read header from file '" << fileName << "'";
    }
}
