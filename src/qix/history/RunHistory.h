#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace qix
{

/// What is remembered of a test.
struct RememberedTest
{
    enum class Outcome : std::uint32_t
    {
        Unknown, ///< it has not been run yet
        Running, ///< it has begun; when this is read later, it has not finished
        Passed,
        Failed,
        Other ///< skipped or aborted
    };

    std::uint32_t run = 0; ///< the number of the run in which it ran last; 0 for none
    Outcome outcome = Outcome::Unknown;
    std::uint64_t microseconds = 0; ///< what it took when it passed last; 0 when that is not known

    bool hasFailed() const noexcept
    {
        return outcome == Outcome::Failed || outcome == Outcome::Running;
    }
};

/// What earlier runs have left: what is remembered of each test, by its id.
struct RunHistory
{
    std::uint32_t lastRun = 0; ///< its number, from 1; 0 when there was none
    std::unordered_map<std::string, RememberedTest> tests;

    /// What is remembered of a test, or what a new one has.
    RememberedTest find(std::string const& id) const
    {
        auto const found = tests.find(id);
        return found == tests.end() ? RememberedTest() : found->second;
    }
};

/// Reads what a run has left in a file; a file that does not exist is a history of no runs.
/// Throws std::runtime_error, which tells what is wrong, for a file that cannot be used.
RunHistory readRunHistory(std::string const& file);

} // namespace qix
