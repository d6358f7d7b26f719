#pragma once

#include <QString>

/// Which programs of the application are not where they are looked for, with the paths and what
/// does not work without them, in words for the user; empty where all are there.
[[nodiscard]] QString missingPrograms();
