#pragma once

#include <zel/language.h>

namespace qix
{

/// How many tests, groups and sub-tests have ended how, as the report tells it.
struct RunCounts
{
    int ok = 0;      ///< those that succeeded
    int failed = 0;  ///< those that failed
    int aborted = 0; ///< those that stopped without a verdict
    int skipped = 0; ///< those that the filters kept out included
};

} // namespace qix
