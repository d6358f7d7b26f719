#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace testing_support {

/// What stands in a file; empty where it cannot be read.
inline QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace testing_support
