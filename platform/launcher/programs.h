#pragma once

#include <QString>

/// Path of a child program by its plain name, such as "wfgather".
///
/// Programs live in "/usr/local/bin"; the environment variable WAVEFORM_PROGRAMS names another
/// directory. The variable is read at each call. Says nothing about whether the program is there.
[[nodiscard]] QString programPath(const QString& name);
