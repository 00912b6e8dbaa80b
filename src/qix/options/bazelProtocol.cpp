#include "options/bazelProtocol.h"

#include "options/numbers.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace qix
{

namespace
{

/// Empty for a variable that is not set.
std::string readVariable(char const* name)
{
    char const* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string takeVariable(char const* name)
{
    std::string value = readVariable(name);
    unsetenv(name);
    return value;
}

/// Bazel gives names in the folder in which the program is started, which the run leaves.
std::string absolute(std::string const& file)
{
    return file.empty() ? file : std::filesystem::absolute(file).string();
}

/// Makes the file if it is not there.
void touch(char const* variable, std::string const& file)
{
    errno = 0;
    if (!file.empty() && !std::ofstream(file, std::ios::app))
    {
        throw std::runtime_error(std::string(variable) + "=" + file +
                                 " cannot be written: " + std::strerror(errno));
    }
}

std::optional<RunOptions::Shard> readShard()
{
    std::string const index = takeVariable("TEST_SHARD_INDEX");
    std::string const total = takeVariable("TEST_TOTAL_SHARDS");
    if (index.empty() && total.empty())
    {
        return std::nullopt;
    }
    auto const number = toNumber(index);
    auto const count = toNumber(total);
    if (!number || !count || *number >= *count)
    {
        throw std::runtime_error("TEST_SHARD_INDEX=" + index + " has a wrong value with " +
                                 "TEST_TOTAL_SHARDS=" + total +
                                 ": allowed is a number from 0 on that is below the other one");
    }
    return RunOptions::Shard{*number + 1, *count};
}

/// Ids are separated by colons, of which none is part of an id.
void readFilter(RunOptions& options)
{
    std::string filter = takeVariable("TESTBRIDGE_TEST_ONLY");
    while (!filter.empty())
    {
        std::size_t const end = filter.find(':');
        if (end != 0)
        {
            options.run.push_back(filter.substr(0, end));
        }
        filter.erase(0, end == std::string::npos ? end : end + 1);
    }
}

void readSeed(RunOptions& options)
{
    std::string const seed = readVariable("TEST_RANDOM_SEED");
    if (seed.empty())
    {
        return;
    }
    options.defaultSeed = toNumber(seed);
    if (!options.defaultSeed)
    {
        throw std::runtime_error("TEST_RANDOM_SEED=" + seed +
                                 " has a wrong value: allowed is a number");
    }
    options.order = RunOptions::Order::Random;
}

RunOptions readVariables()
{
    // Before anything else can go wrong.
    touch("TEST_SHARD_STATUS_FILE", takeVariable("TEST_SHARD_STATUS_FILE"));
    RunOptions options;
    options.any = true;
    options.shard = readShard();
    options.junitFile = absolute(takeVariable("XML_OUTPUT_FILE"));
    options.prematureExitFile = absolute(takeVariable("TEST_PREMATURE_EXIT_FILE"));
    readFilter(options);
    if (takeVariable("TESTBRIDGE_TEST_RUNNER_FAIL_FAST") == "1")
    {
        options.failFast = 1;
    }
    readSeed(options);
    options.warningsFile = absolute(readVariable("TEST_WARNINGS_OUTPUT_FILE"));
    touch("TEST_WARNINGS_OUTPUT_FILE", options.warningsFile);
    options.workFolder = absolute(readVariable("TEST_TMPDIR"));
    options.logFolder = absolute(readVariable("TEST_UNDECLARED_OUTPUTS_DIR"));
    return options;
}

} // namespace

RunOptions readBazelProtocol()
{
    return readVariable("BAZEL_TEST") == "1" ? readVariables() : RunOptions();
}

} // namespace qix
