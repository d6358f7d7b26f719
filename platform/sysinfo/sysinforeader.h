#pragma once

#include <QString>

/// What the instrument says of itself.
///
/// An information file has lines "key: value" or "key=value"; keys are compared without case,
/// blanks around both are dropped, other lines are ignored. Hardware revision: key "hwrev" or
/// "revision"; serial number: key "serial". A file that is missing, or larger than 64 KiB, answers
/// empty texts: a desktop has none.
class SysinfoReader
{
public:
    [[nodiscard]] static QString hwrev(const QString& file);
    [[nodiscard]] static QString serial(const QString& file);

    /// Version of the application, such as "0.1.0".
    [[nodiscard]] static QString releaseVersion();
};
