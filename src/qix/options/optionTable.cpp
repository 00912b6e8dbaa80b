#include "options/optionTable.h"

#include "guards/exitStatus.h"
#include "options/numbers.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <thread>
#include <utility>

namespace qix
{

namespace
{

using Value = Option::Value;

/// Notes a number from 1 on. False when the text is none.
bool applyCount(std::optional<std::uint64_t>& count, std::string const& value)
{
    count = toNumber(value);
    return count && *count > 0;
}

bool applyCount(std::optional<std::uint64_t>& count, std::string const& value,
                std::uint64_t withoutValue)
{
    return applyCount(count, value.empty() ? std::to_string(withoutValue) : value);
}

bool applyHelp(RunOptions& options, std::string const& /*value*/)
{
    options.help = true;
    return true;
}

bool applyVersion(RunOptions& options, std::string const& /*value*/)
{
    options.version = true;
    return true;
}

bool applyListTests(RunOptions& options, std::string const& value)
{
    options.listing = value.empty() ? RunOptions::Listing::Ids : RunOptions::Listing::Json;
    return value.empty() || value == "json";
}

bool applyRun(RunOptions& options, std::string const& value)
{
    options.run.push_back(value);
    return true;
}

bool applySkip(RunOptions& options, std::string const& value)
{
    options.skip.push_back(value);
    return true;
}

[[noreturn]] void throwUnreadable(std::string const& option, std::string const& file)
{
    throw std::runtime_error("--" + option + "=" + file +
                             " cannot be read: " + std::strerror(errno) + "; see --help");
}

/// Adds the lines of the file, each of which is a pattern.
bool applyRunFile(RunOptions& options, std::string const& value)
{
    errno = 0;
    std::ifstream file(value, std::ios::binary);
    std::string line;
    while (std::getline(file, line))
    {
        if (!line.empty() && line.back() == '\r')
        {
            line.pop_back();
        }
        if (!line.empty())
        {
            options.run.push_back(line);
        }
    }
    if (!file.eof())
    {
        throwUnreadable("run-file", value);
    }
    options.hasRunFile = true;
    return true;
}

bool applyRerunFailed(RunOptions& options, std::string const& /*value*/)
{
    options.rerunFailed = true;
    return true;
}

bool applyFailFast(RunOptions& options, std::string const& value)
{
    return applyCount(options.failFast, value, 1);
}

bool applyRepeat(RunOptions& options, std::string const& value)
{
    return applyCount(options.repeat, value);
}

bool applyUntilFail(RunOptions& options, std::string const& value)
{
    return applyCount(options.untilFail, value, std::numeric_limits<std::uint64_t>::max());
}

bool applySeed(RunOptions& options, std::string const& seed)
{
    options.order = RunOptions::Order::Random;
    options.seed = toNumber(seed);
    return options.seed.has_value();
}

bool applyOrder(RunOptions& options, std::string const& value)
{
    using Order = RunOptions::Order;
    constexpr char const random[] = "random:";
    if (value.rfind(random, 0) == 0)
    {
        return applySeed(options, value.substr(sizeof(random) - 1));
    }
    for (auto const& [name, order] : {std::pair<char const*, Order>{"declared", Order::Declared},
                                      {"random", Order::Random},
                                      {"failed", Order::Failed},
                                      {"longest", Order::Longest}})
    {
        if (value == name)
        {
            options.order = order;
            options.seed.reset();
            return true;
        }
    }
    return false;
}

bool applyDurations(RunOptions& options, std::string const& value)
{
    constexpr std::uint64_t fewEnoughToRead = 10;
    return applyCount(options.durations, value, fewEnoughToRead);
}

bool applyColor(RunOptions& options, std::string const& value)
{
    using Color = RunOptions::Color;
    for (auto const& [name, color] : {std::pair<char const*, Color>{"auto", Color::Auto},
                                      {"always", Color::Always},
                                      {"never", Color::Never}})
    {
        if (value == name)
        {
            options.color = color;
            return true;
        }
    }
    return false;
}

/// The name as it is meant where the program was started: the run has a folder of its own.
std::string absolute(std::string const& file)
{
    return std::filesystem::absolute(file).string();
}

bool applyOutputEvents(RunOptions& options, std::string const& value)
{
    options.eventsFile = absolute(value);
    return true;
}

bool applyOutputJUnit(RunOptions& options, std::string const& value)
{
    options.junitFile = absolute(value);
    return true;
}

bool applyJUnitSchema(RunOptions& options, std::string const& value)
{
    options.junitSchema = value == "jenkins" ? JUnitSchema::Jenkins : JUnitSchema::Plain;
    return value == "jenkins" || value == "plain";
}

bool applyAnnotate(RunOptions& options, std::string const& value)
{
    options.annotatesForGithub = true;
    return value == "github";
}

/// Statuses that mean something else already, here or to a shell, are not allowed.
bool applySkipStatus(RunOptions& options, std::string const& value)
{
    constexpr std::uint64_t highest = 125;
    auto const number = toNumber(value);
    if (!number || *number <= exitNoVerdict || *number > highest)
    {
        return false;
    }
    options.skipStatus = static_cast<int>(*number);
    return true;
}

bool applyShard(RunOptions& options, std::string const& value)
{
    std::size_t const slash = value.find('/');
    if (slash == std::string::npos)
    {
        return false;
    }
    auto const number = toNumber(value.substr(0, slash));
    auto const count = toNumber(value.substr(slash + 1));
    if (!number || !count || *number < 1 || *number > *count)
    {
        return false;
    }
    options.shard = RunOptions::Shard{*number, *count};
    return true;
}

bool applyJobs(RunOptions& options, std::string const& value)
{
    constexpr std::uint64_t most = 1000;
    std::uint64_t const processors = std::max(1U, std::thread::hardware_concurrency());
    return applyCount(options.jobs, value, processors) && *options.jobs <= most;
}

bool applyIsolate(RunOptions& options, std::string const& /*value*/)
{
    options.isolate = true;
    return true;
}

bool applyTimeLimit(RunOptions& options, std::string const& value)
{
    constexpr std::uint64_t most = 1000000000;
    options.needsSupervisor = true;
    options.hasTimeLimits = value != "off";
    options.timeLimit.reset();
    return !options.hasTimeLimits ||
           (applyCount(options.timeLimit, value) && *options.timeLimit <= most);
}

bool applyRetries(RunOptions& options, std::string const& value)
{
    std::optional<std::uint64_t> const count = toNumber(value);
    options.needsSupervisor = true;
    options.retries = count.value_or(0);
    return count.has_value();
}

bool applyFlaky(RunOptions& options, std::string const& value)
{
    options.needsSupervisor = true;
    options.failsByFlaky = value == "fail";
    return value == "fail" || value == "pass";
}

/// Reads the same in each locale.
bool applyTimeLimitFactor(RunOptions& options, std::string const& value)
{
    constexpr double most = 1000000;
    options.needsSupervisor = true;
    char const* const end = value.data() + value.size();
    auto const [rest, error] =
        std::from_chars(value.data(), end, options.timeLimitFactor, std::chars_format::fixed);
    return error == std::errc() && rest == end && options.timeLimitFactor > 0 &&
           options.timeLimitFactor <= most;
}

RunHistory readTimes(std::string const& file)
{
    try
    {
        return readRunHistory(file);
    }
    catch (std::exception const& e)
    {
        throw std::runtime_error("--times=" + file + ": " + e.what() + "; see --help");
    }
}

bool applyTimes(RunOptions& options, std::string const& value)
{
    errno = 0;
    if (!std::ifstream(value, std::ios::binary))
    {
        throwUnreadable("times", value);
    }
    options.times = readTimes(value);
    return true;
}

} // namespace

std::vector<Option> const& optionTable()
{
    static std::vector<Option> const table = {
        {"help", "", "", "Tells how to use the program, and runs nothing.", Value::None, applyHelp},
        {"version", "", "", "Tells the version of qix, and runs nothing.", Value::None,
         applyVersion},
        {"list-tests", "[=json]", "",
         "Lists the ids of the tests that would run, and runs nothing.\n"
         "With json: one document that tells more of each.",
         Value::Optional, applyListTests},
        {"run", "=PATTERN", "",
         "Runs the test or group with this id, or all that match when\n"
         "there is a * for any run of characters. Repeatable.",
         Value::Required, applyRun},
        {"run-file", "=FILE", "", "Runs what each line of the file tells, as --run does.",
         Value::Required, applyRunFile},
        {"skip", "=PATTERN", "", "Leaves out what --run would run. Repeatable.", Value::Required,
         applySkip},
        {"rerun-failed", "", "",
         "Runs what failed or did not finish in the last run that was\n"
         "recorded in the working folder.",
         Value::None, applyRerunFailed},
        {"fail-fast", "[=N]", ", with N from 1 on", "Stops after N failed tests, by default 1.",
         Value::Optional, applyFailFast},
        {"repeat", "=N", ", with N from 1 on", "Runs everything N times.", Value::Required,
         applyRepeat},
        {"until-fail", "[=N]", ", with N from 1 on",
         "Runs everything again until a test fails, N times at most.", Value::Optional,
         applyUntilFail},
        {"order", "=declared|random[:SEED]|failed|longest", ", with a number for SEED",
         "Runs the tests of each group in this order. Failed and longest\n"
         "come first by what earlier runs have left.",
         Value::Required, applyOrder},
        {"shard", "=K/N", ", with N from 1 on and K from 1 to N",
         "Runs part K of N, which together are all tests.", Value::Required, applyShard},
        {"times", "=FILE", "",
         "Takes from this file, which a run has left, what tests took:\n"
         "for parts of equal length and for the order.",
         Value::Required, applyTimes},
        {"jobs", "[=N]", ", with N from 1 to 1000",
         "Runs the tests in N processes at a time, by default one for each\n"
         "processor. A test that ends its process has failed, and the run\n"
         "goes on.",
         Value::Optional, applyJobs},
        {"isolate", "", "", "Runs each test in a process of its own.", Value::None, applyIsolate},
        {"time-limit", "=SECONDS|off", ", with SECONDS from 1 to 1000000000",
         "Ends a test that takes longer, by default three times what is\n"
         "expected of its class at most. Needs --jobs or --isolate.",
         Value::Required, applyTimeLimit},
        {"time-limit-factor", "=F", ", with a number F above 0 and up to 1000000",
         "Makes all time limits longer or shorter by this factor.", Value::Required,
         applyTimeLimitFactor},
        {"retries", "=N", ", with a number for N",
         "Tries a test that has failed up to N times again. When it passes\n"
         "then, it counts as OK and is listed as flaky. Needs --jobs or\n"
         "--isolate.",
         Value::Required, applyRetries},
        {"flaky", "=fail|pass", "", "Whether flaky tests fail, or pass (the default).",
         Value::Required, applyFlaky},
        {"durations", "[=N]", ", with N from 1 on",
         "Tells the N tests that took longest, by default 10.", Value::Optional, applyDurations},
        {"skip-status", "=N", ", with N from 3 to 125",
         "Ends with N instead of 0 when there were tests to run and none\n"
         "passed: all were skipped or aborted.",
         Value::Required, applySkipStatus},
        {"output-events", "=FILE", "", "Writes what happens to a file, as one JSON object a line.",
         Value::Required, applyOutputEvents},
        {"output-junit", "=FILE", "",
         "Writes a JUnit report, which can be read even when the run is\n"
         "killed.",
         Value::Required, applyOutputJUnit},
        {"junit-schema", "=plain|jenkins", "",
         "Which attributes the JUnit report has: plain (the default), or\n"
         "those alone that Jenkins' xUnit plug-in takes.",
         Value::Required, applyJUnitSchema},
        {"annotate", "=github", "",
         "Prints a line for each of the first ten failures, which GitHub\n"
         "shows beside the source.",
         Value::Required, applyAnnotate},
        {"color", "=auto|always|never", "",
         "Colours on a terminal (the default), always, or never. NO_COLOR\n"
         "and CLICOLOR_FORCE in the environment are heeded.",
         Value::Required, applyColor},
    };
    return table;
}

} // namespace qix
