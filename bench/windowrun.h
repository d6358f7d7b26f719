#pragma once

#include <QString>
#include <QStringList>

/// A program from its start to its first painted window, and what memory it has then.
struct WindowRun
{
    QString problem; ///< empty where the window came
    double wall_ms = 0.0; ///< until it was painted and the event loop turned
    double cpu_ms = 0.0; ///< of the main thread until then
    long resident_KB = 0; ///< where nothing was to be computed any more
    long share_KB = 0; ///< the same, with memory that processes share told once among them
};

/// Starts a program that loads PaintTeller from the directory of plugins, looks at it and ends it.
/// \param rests whether to wait until it computes no more, for the memory
[[nodiscard]] WindowRun runWindow(const QStringList& command, const QString& pluginDir, bool rests);
