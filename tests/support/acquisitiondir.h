#pragma once

#include <QByteArray>
#include <QDir>
#include <QString>

namespace testing_support {

/// The instrument's environment for a test: user "user", its temporary directory there and free of
/// snapshots. Tests that use it must not run at the same time.
class AcquisitionDir
{
public:
    AcquisitionDir()
        : user(qgetenv("USER"))
    {
        qputenv("USER", "user");
        qunsetenv("TMPDIR");
        QDir().mkpath(path());
        clean();
    }

    ~AcquisitionDir()
    {
        clean();
        qputenv("USER", user);
    }

    AcquisitionDir(const AcquisitionDir&) = delete;
    AcquisitionDir& operator=(const AcquisitionDir&) = delete;

    static QString path() { return "/tmp/user"; }

    static QString snapshot() { return path() + "/wfsnapshot.bin"; }

private:
    static void clean() { QFile::remove(snapshot()); }

    QByteArray user;
};

} // namespace testing_support
