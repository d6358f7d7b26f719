#pragma once

#include "tests/soak/deskuser.h"

#include <QString>

class Host;

/// Leads the window through all its states and keeps a picture of the screen in each.
class ScreenStates
{
public:
    /// \param dir exists already; what is there is replaced
    ScreenStates(Host& host, const QString& dir);

    /// All of them, in the order in which a user comes to them.
    /// \return an empty text, or what went wrong
    [[nodiscard]] QString takeAll();

private:
    void takeMeasuring();
    void takeTraces();
    void takeMarkers();
    void takeDialogs();
    void takeNotices();
    void measureFibre(const QString& fibre, const QString& wavelength);

    void comeToFront();

    /// Waits until all is painted, and saves the screen under this name.
    void take(const QString& name);

    Host& host;
    QString dir;
    testing_support::DeskUser user;
    QString problem;
};
