#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Stops the target with these words where something that always holds does not.
inline void claim(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "Broken claim: %s\n", what);
        std::abort();
    }
}

} // namespace fuzz
