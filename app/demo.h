#pragma once

#include "app/host.h"

#include <QObject>
#include <QString>

/// One whole measurement with nobody at the screen: start, trace, save, report, picture.
class Demo : public QObject
{
    Q_OBJECT

public:
    /// \param dir gets demo.sor, its report demo.html and demo.png, and window.png; made where it
    /// is missing
    Demo(Host& host, const QString& dir);

    /// Starts; the application's event loop ends with the exit code when all is done.
    void start();

private:
    void finish();
    [[nodiscard]] QString saveTrace();
    void leave(const QString& problem);

    Host& host;
    QString dir;
    bool done = false;
};
