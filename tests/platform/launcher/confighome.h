#pragma once

#include "platform/launcher/zuconfig.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTemporaryDir>

namespace testing_support {

/// An empty configuration directory of a test's own, and no values for this run.
class ConfigHome
{
public:
    ConfigHome()
        : before(qgetenv("XDG_CONFIG_HOME"))
    {
        point(dir.path().toLocal8Bit());
    }

    ~ConfigHome()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        ZuConfig::clearThisRun();
        if (before.isNull()) {
            qunsetenv("XDG_CONFIG_HOME");
        } else {
            qputenv("XDG_CONFIG_HOME", before);
        }
    }

    ConfigHome(const ConfigHome&) = delete;
    ConfigHome& operator=(const ConfigHome&) = delete;

    [[nodiscard]] QString path() const { return dir.path(); }

    /// Where the settings of a module are kept.
    [[nodiscard]] QString file(const QString& module) const
    {
        return dir.filePath(QStringLiteral("waveform/%1.ini").arg(module));
    }

    static void point(const QByteArray& path) { qputenv("XDG_CONFIG_HOME", path); }

private:
    QByteArray before;
    QTemporaryDir dir;
};

} // namespace testing_support
