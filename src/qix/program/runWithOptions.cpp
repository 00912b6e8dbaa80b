#include "program/runWithOptions.h"

#include <qix/CTestItemGroup.h>

#include "guards/exitStatus.h"
#include "guards/posix/runNotes.h"
#include "planning/CPlannedRun.h"
#include "planning/CTestSelection.h"
#include "planning/listTests.h"
#include "program/CReportSet.h"
#include "program/colors.h"
#include "program/posix/CDivertedOutput.h"
#include "program/posix/CWorkFolderLock.h"
#include "runner/consoleColors.h"
#include "runner/posix/logFile.h"
#include "runner/posix/workDirectory.h"
#include "runner/printError.h"
#include "runner/startUp.h"
#include "runner/warnings.h"
#include "selection/testIds.h"
#include "supervisor/CSupervisedRunner.h"
#include "supervisor/posix/CInterrupts.h"
#include "text/messageOf.h"

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <optional>
#include <system_error>

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

zel::P<CPlannedRunner> makeRunner(RunOptions const& options)
{
    CNotedMaking const noted;
    ITestItem* const root = CTestItemGroup::global().get();
    if (options.isSupervised())
    {
        return zel::newObj<CSupervisedRunner>(root, options);
    }
    return zel::newObj<CPlannedRunner>(root);
}

ReportContext makeContext(std::string const& program, RunOptions const& options,
                          CTestSelection const& selection, CPlannedRunner& runner)
{
    ReportContext context;
    context.program = program;
    context.version = QIX_VERSION;
    context.digest = selection.digest();
    if (options.shard)
    {
        context.shard =
            std::to_string(options.shard->number) + '/' + std::to_string(options.shard->count);
    }
    context.options = options.given;
    context.idOf = [&runner](TestInfo const& test) { return runner.idOf(test); };
    context.process = [&runner] { return runner.testProcess(); };
    return context;
}

int run(std::string const& program, CTestSelection const& selection, RunOptions const& options,
        CPlannedRunner& runner, std::string const& historyFile, RunHistory const& history)
{
    CWorkFolderLock const lock;
    setWarningsFile(options.warningsFile);
    divertLogs(options.logFolder);
    CReportSet reports(options, makeContext(program, options, selection, runner));
    bool const isColored = options.any && hasColors(options.color);
    consoleColors = isColored ? withColors : withoutColors;
    CPlannedRun plannedRun(options, selection, runner);
    plannedRun.record(historyFile, history);
    int const status = plannedRun.run();
    bool const areReportsComplete = reports.finish();
    return areReportsComplete || status == exitNotAllPassed ? status : exitNoVerdict;
}

/// \param diverted  ends when the tests are listed
int runInWorkDirectory(Arguments const& arguments, std::string const& program,
                       std::string const& historyFile, std::optional<CDivertedOutput>& diverted)
{
    RunOptions const& options = arguments.options;
    RunHistory const history = readHistory(historyFile);
    zel::P<CPlannedRunner> const runner = makeRunner(options);
    CTestSelection selection(options, history, *runner);
    if (std::optional<int> const status = selection.select(arguments.lines))
    {
        return *status;
    }
    diverted.reset();
    return options.listing != RunOptions::Listing::None
               ? list(selection, options, program)
               : run(program, selection, options, *runner, historyFile, history);
}

} // namespace

int runWithOptions(Arguments const& arguments, std::string const& program)
{
    std::optional<CDivertedOutput> diverted;
    if (arguments.options.listing != RunOptions::Listing::None)
    {
        diverted.emplace();
    }
    if (!arguments.options.workFolder.empty())
    {
        setenv("QIX_TESTWORKDIR", arguments.options.workFolder.c_str(), 0);
    }
    if (!enterWorkDirectory())
    {
        return exitNotAllPassed;
    }
    std::string const name = withoutFolder(program);
    int const status = runInWorkDirectory(arguments, name, historyFileOf(name), diverted);
    CInterrupts::endBySignal();
    return status;
}

int runWithoutOptions(Arguments const& arguments, std::string const& program)
{
    if (!enterWorkDirectory())
    {
        return exitNotAllPassed;
    }
    std::string const name = withoutFolder(program);
    std::string const historyFile = historyFileOf(name);
    std::error_code error;
    if (std::filesystem::exists(historyFile, error))
    {
        std::optional<CDivertedOutput> nothingDiverted;
        return runInWorkDirectory(arguments, name, historyFile, nothingDiverted);
    }
    std::vector<char const*> lines = arguments.lines;
    std::optional<CWorkFolderLock> lock;
    bool const passed =
        selectAndRun(static_cast<int>(lines.size()), lines.data(), [&lock] { lock.emplace(); });
    return passed ? exitAllPassed : exitNotAllPassed;
}

} // namespace qix
