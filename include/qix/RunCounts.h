#pragma once

namespace qix
{

/// How many tests, groups and sub-tests have ended how, as the report tells it.
struct RunCounts
{
    int ok = 0;
    int failed = 0;
    int aborted = 0;
    int skipped = 0; ///< those that the filters kept out included
};

} // namespace qix
