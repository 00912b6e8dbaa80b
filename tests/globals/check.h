#pragma once

#include <cstdio>

namespace check
{

/// The number of checks that have failed.
int& failures();

/// Reports what does not hold.
inline void that(bool holds, char const* what)
{
    if (!holds)
    {
        ++failures();
        std::fprintf(stderr, "does not hold: %s\n", what);
    }
}

void safeGlobals();

/// Has the state of a static safe global checked after its destructor at exit, and the process
/// end with \p status or, when something does not hold, 1.
void safeGlobalAtExit(int status);

} // namespace check
