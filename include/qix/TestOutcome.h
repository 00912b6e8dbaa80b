#pragma once

#include <qix/CheckFailure.h>
#include <zel/String.h>

#include <chrono>
#include <string>
#include <vector>

namespace qix
{

/// How a test, a group or a sub-test has ended.
struct TestOutcome
{
    /// What became of it.
    enum Kind
    {
        Ok,
        Failed,
        Aborted, ///< stopped without a verdict
        Skipped  ///< does not apply here
    };

    Kind kind = Ok;                     ///< what became of it
    std::string message;                ///< what() of what ended it, as printed; empty for Ok
    std::vector<CheckFailure> failures; ///< why it Failed, the first ones; empty for all others
    zel::String reason;                 ///< why it was Aborted or Skipped; empty when nobody said

    /// How long it took, by a clock that is never set.
    std::chrono::nanoseconds elapsed = std::chrono::nanoseconds::zero();
};

} // namespace qix
