#pragma once

#include <string>
#include <vector>

/// What running a program cost.
struct ChildRun
{
    int code = -1; ///< -1 where it could not be started or was killed
    double wall_s = 0.0;
    double cpu_s = 0.0; ///< its own and the system's work for it
    long peak_KB = 0; ///< most memory that it had at a time
};

/// Runs a program to its end, its output thrown away; words[0] is the program.
[[nodiscard]] ChildRun runChild(const std::vector<std::string>& words,
                                const std::string& directory = ".");
