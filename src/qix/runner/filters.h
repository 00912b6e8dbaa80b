#pragma once

#include <qix/ITestItem.h>
#include <qix/ITestListener.h>

#include <optional>

namespace qix
{

/// What a runner lets in.
struct FilterLimits
{
    int maxDuration;
    bool runInteractive;
    bool onlyInteractive;
};

/// What there is to know about a test that wants to be let in.
struct FilteredTest
{
    ITestItem::Duration duration;
    bool isInteractive;
    bool containsAnyInteractive;
};

/// The filter that keeps the test out, if there is one.
inline std::optional<ITestListener::Filter> findFilter(FilterLimits const& limits,
                                                       FilteredTest const& test) noexcept
{
    using Filter = ITestListener::Filter;
    if (limits.maxDuration < test.duration)
    {
        return Filter::Duration;
    }
    if (test.isInteractive && !limits.runInteractive)
    {
        return Filter::Interactive;
    }
    if (!test.containsAnyInteractive && limits.onlyInteractive)
    {
        return Filter::NotInteractive;
    }
    return std::nullopt;
}

} // namespace qix
