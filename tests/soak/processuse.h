#pragma once

#include <QString>

/// What the process that asks has of the system and of Qt at the moment.
struct ProcessUse
{
    long resident_KB = 0;
    long mostResident_KB = 0; ///< since its start
    long heap_KB = 0; ///< handed out by the allocator; 0 where that does not tell
    int handles = 0; ///< open files, sockets, watches
    int threads = 0;
    int children = 0; ///< processes, those that nobody waited for included
    int windows = 0; ///< top-level widgets, hidden ones included
    long objects = 0; ///< QObjects since countObjects(), in all threads
};

/// From here on QObjects are counted; once, before any that matters is made.
void countObjects();

[[nodiscard]] ProcessUse processUse();

/// On one line, with names and units.
[[nodiscard]] QString toText(const ProcessUse& use);
