#pragma once

#include <qix/TestInfo.h>

#include "model/TestProcess.h"

#include <functional>
#include <string>
#include <vector>

namespace qix
{

/// What reports tell of the run that the test model does not know.
struct ReportContext
{
    std::string program; ///< its name, without a folder
    std::string version; ///< of the framework
    std::string digest;  ///< of the list of tests that all shards share
    std::string shard;   ///< such as "2/5"; empty when there is none
    std::vector<std::string> options;

    /// The id of a test that is about to begin, or that the filters leave out.
    std::function<std::string(TestInfo const&)> idOf;

    /// What is known of the process that has run what ends just now.
    std::function<TestProcess()> process = [] { return TestProcess(); };
};

} // namespace qix
