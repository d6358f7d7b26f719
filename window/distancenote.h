#pragma once

#include "platform/otdr/reflectogram.h"

#include <QLabel>

namespace Waveform {

/// Says in a corner of the canvas that the distances of the main trace are not known, as long as
/// such a trace is the main one; touches go through it to the canvas.
class DistanceNote : public QLabel
{
    Q_OBJECT

public:
    explicit DistanceNote(QWidget* canvas);

public slots:
    void showFor(Reflectogram refl);
};

} // namespace Waveform
