#include "storage/savethread.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Waveform {

void SaveThread::run()
{
    if (!refl.isValid()) {
        return;
    }
    QString reason;
    result = refl.save(sor, &reason);
    if (result != 0) {
        qDebug() << "can not save" << sor << reason;
    } else if (!flashDir.isEmpty()) {
        static_cast<void>(copyFiles()); // the trace is saved, whatever becomes of the copy
    }
    emit saved(sor, result == 0);
}

bool SaveThread::copyFiles() const
{
    const QString target = flashDir + QDir::separator() + QFileInfo(sor).fileName();
    if (QFile::exists(target)) {
        QFile::remove(target);
    }
    QFile source(sor);
    const bool copied = source.copy(target);
    if (!copied) {
        qDebug() << "can not copy" << sor << "to" << target << source.errorString();
    }
    return copied;
}

} // namespace Waveform
