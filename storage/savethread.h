#pragma once

#include "platform/otdr/reflectogram.h"

#include <QString>
#include <QThread>

namespace Waveform {

/// Writes one trace to its file, off the GUI thread, and copies it to the flash drive.
///
/// Fill in the members, start, wait; they are not to be touched in between.
class SaveThread : public QThread
{
    Q_OBJECT

public:
    Reflectogram refl;
    QString sor; ///< path of the trace file to write
    QString flashDir; ///< directory on the flash drive; empty where no copy is wanted
    int result = -1; ///< 0 once the trace is saved

signals:
    void saved(QString sor, bool success);

protected:
    void run() override;

private:
    [[nodiscard]] bool copyFiles() const;
};

} // namespace Waveform
