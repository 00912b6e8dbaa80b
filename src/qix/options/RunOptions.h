#pragma once

#include "history/RunHistory.h"
#include "reporters/JUnitSchema.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qix
{

/// What the options on the command line ask for.
struct RunOptions
{
    enum class Listing
    {
        None,
        Ids,
        Json
    };

    enum class Order
    {
        Declared,
        Random,
        Failed, ///< what failed in the last run comes first
        Longest ///< what took longest in earlier runs comes first
    };

    enum class Color
    {
        Auto,
        Always,
        Never
    };

    /// One of several parts of the tests.
    struct Shard
    {
        std::uint64_t number = 1; ///< from 1
        std::uint64_t count = 1;
    };

    bool any = false; ///< there was an option
    bool help = false;
    bool version = false;
    bool rerunFailed = false;
    Listing listing = Listing::None;
    Order order = Order::Declared;
    Color color = Color::Auto;
    bool hasRunFile = false;       ///< even if the files were empty
    std::vector<std::string> run;  ///< patterns, those of files among them
    std::vector<std::string> skip; ///< patterns
    std::optional<std::uint64_t> seed;
    std::optional<std::uint64_t> failFast; ///< ends behind so many failed tests
    std::optional<std::uint64_t> repeat;
    std::optional<std::uint64_t> untilFail; ///< repeats so many times at most
    std::optional<std::uint64_t> durations; ///< tells so many tests that took longest
    std::optional<int> skipStatus; ///< the exit status when tests ran and none passed or failed
    std::optional<Shard> shard;
    std::optional<std::uint64_t> defaultSeed; ///< for random order without a seed of its own
    std::string warningsFile;                 ///< absolute; warnings are appended; empty for none
    std::string workFolder; ///< absolute; of the working folder, unless QIX_TESTWORKDIR tells it
    std::string logFolder;  ///< absolute; empty for the working folder
    std::string prematureExitFile; ///< absolute; is there until the run ends; empty for none
    std::string eventsFile;        ///< absolute; empty for none
    std::string junitFile;         ///< absolute; empty for none
    JUnitSchema junitSchema = JUnitSchema::Plain;
    bool annotatesForGithub = false;
    std::vector<std::string> given;    ///< the options as they were written
    std::optional<std::uint64_t> jobs; ///< so many processes run tests
    bool isolate = false;              ///< each test has a process of its own
    bool needsSupervisor = false;      ///< there was an option that means nothing without one
    std::uint64_t retries = 0;         ///< of a test that has failed
    bool failsByFlaky = false;         ///< tests that pass when they are tried again have failed
    bool hasTimeLimits = true;         ///< tests that take too long are ended
    std::optional<std::uint64_t> timeLimit; ///< of each test in seconds, whatever its class
    double timeLimitFactor = 1;             ///< of what classes and timeLimit allow
    std::optional<RunHistory> times;        ///< of a file, instead of those of the working folder

    /// True when tests run in processes of their own.
    bool isSupervised() const noexcept { return jobs.has_value() || isolate; }
};

/// The arguments of a test executable, sorted.
struct Arguments
{
    RunOptions options;
    std::vector<char const*> lines; ///< the selection lines in their order
};

/// Sorts the arguments behind the program's name. One that begins with "--" and a letter is an
/// option, up to a lone "--"; all others are selection lines. Reads the files that hold patterns.
/// Throws std::runtime_error for an option that is unknown or has a wrong value.
/// \param defaults  what holds where no option says otherwise
Arguments parseArguments(int argc, char** argv, RunOptions const& defaults);

/// What --help prints about the options, a line or more for each.
std::string describeOptions();

} // namespace qix
