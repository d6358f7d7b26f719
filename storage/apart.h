#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

namespace Waveform {

/// What was said by work done apart.
struct ToldApart
{
    QByteArray bytes;
    QString problem; ///< why there are none; empty where there are
};

/// Does work in a process of its own and waits for what it says.
///
/// For what may hang on a drive: a thread that hangs there could not be ended, nor the program with
/// it. The work has a heap and files and takes nothing else, for the locks of other threads stay
/// taken where it runs; what it says has a byte at least. isGivenUp is asked some twenty times a
/// second, and ends the wait.
[[nodiscard]] ToldApart doApart(const std::function<QByteArray()>& work,
                                const std::function<bool()>& isGivenUp);

} // namespace Waveform
