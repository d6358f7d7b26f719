#pragma once

#include <QByteArray>

/// Who made the instrument that took a trace: the supplier parameters of a trace file.
struct SupParamsBlock
{
    QByteArray supplierName;
    QByteArray mainframeId;
    QByteArray mainframeSerial;
    QByteArray moduleId;
    QByteArray moduleSerial;
    QByteArray softwareRevision;
    QByteArray other;
};
