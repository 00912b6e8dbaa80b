#include "program/runWithOptions.h"

#include <qix/CTestItemGroup.h>

#include "guards/exitStatus.h"
#include "program/CPlannedRun.h"
#include "program/CTestSelection.h"
#include "program/colors.h"
#include "program/listTests.h"
#include "program/posix/CDivertedOutput.h"
#include "program/printError.h"
#include "runner/consoleColors.h"
#include "runner/posix/workDirectory.h"
#include "selection/testIds.h"
#include "text/messageOf.h"

#include <exception>
#include <optional>

namespace qix
{

namespace
{

std::string withoutFolder(std::string const& program)
{
    return program.substr(program.rfind('/') + 1);
}

/// The executables of one folder have one working folder, and each remembers its own tests.
std::string historyFileOf(std::string const& program)
{
    std::string file = "testHistory-";
    appendIdComponent(file, program);
    return file + ".bin";
}

/// Nothing is remembered when the file cannot be used, which is no reason not to run.
RunHistory readHistory(std::string const& file)
{
    try
    {
        return readRunHistory(file);
    }
    catch (std::exception const& e)
    {
        printError("", messageOf(e));
        return RunHistory();
    }
}

int list(CTestSelection const& selection, RunOptions const& options, std::string const& program)
{
    if (options.listing == RunOptions::Listing::Ids)
    {
        listTests(selection);
    }
    else
    {
        listTestsAsJson(selection, program);
    }
    return exitAllPassed;
}

int run(CTestSelection const& selection, Arguments const& arguments, CPlannedRunner& runner,
        std::string const& historyFile, RunHistory const& history)
{
    consoleColors = hasColors(arguments.options.color) ? withColors : withoutColors;
    CPlannedRun plannedRun(arguments.options, selection, runner);
    plannedRun.record(historyFile, history);
    return plannedRun.run();
}

} // namespace

int runWithOptions(Arguments const& arguments, std::string const& program)
{
    RunOptions const& options = arguments.options;
    bool const isListing = options.listing != RunOptions::Listing::None;
    std::optional<CDivertedOutput> diverted;
    if (isListing)
    {
        diverted.emplace();
    }
    if (!enterWorkDirectory())
    {
        return exitNotAllPassed;
    }
    std::string const name = withoutFolder(program);
    std::string const historyFile = historyFileOf(name);
    RunHistory const history = readHistory(historyFile);
    auto const runner = zel::newObj<CPlannedRunner>(CTestItemGroup::global().get());
    CTestSelection selection(options, history, *runner);
    if (std::optional<int> const status = selection.select(arguments.lines))
    {
        return *status;
    }
    diverted.reset();
    return isListing ? list(selection, options, name)
                     : run(selection, arguments, *runner, historyFile, history);
}

} // namespace qix
