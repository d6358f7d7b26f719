#pragma once

#include <QString>
#include <QTemporaryDir>

namespace testing_support {

/// A directory of small stand-ins for the child programs; they are found there as long as it lives.
class FakePrograms
{
public:
    FakePrograms();
    ~FakePrograms();

    /// Makes a program of this name that runs a shell script; it finds its arguments in "$@".
    void make(const QString& name, const QString& script) const;

    [[nodiscard]] QString path(const QString& name) const;

private:
    QTemporaryDir dir;
    QByteArray before;
};

} // namespace testing_support
