#include <qix/main.h>

#include "guards/exitStatus.h"
#include "guards/posix/CCrashGuard.h"
#include "guards/posix/CExitGuard.h"
#include "options/RunOptions.h"
#include "options/bazelProtocol.h"
#include "program/posix/CFileSizeLimit.h"
#include "program/posix/CPrematureExitFile.h"
#include "program/posix/CWorkFolderLock.h"
#include "program/posix/standardDescriptors.h"
#include "program/posix/standardInput.h"
#include "program/runWithOptions.h"
#include "runner/posix/logFile.h"
#include "runner/printError.h"
#include "text/messageOf.h"

#include <clocale>
#include <cstdio>
#include <cstring>
#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace qix
{

namespace
{

void printUsage(std::string const& program)
{
    std::printf("No tests were selected, and standard input has ended, so the menu is not shown.\n"
                "Select tests by arguments, each of which is one selection line:\n"
                "  %s '*'          all tests\n"
                "  %s 0 2-4 +      tests by number, long tests among them\n"
                "  %s +word -other all tests with one word in their names, without another\n"
                "  %s word         list the tests with a word in their names\n",
                program.c_str(), program.c_str(), program.c_str(), program.c_str());
    std::fflush(stdout);
}

std::string helpText(std::string const& program)
{
    return "Usage: " + program +
           " [OPTION...] [--] [SELECTION...]\n"
           "\n"
           "Without arguments a menu is shown. Each SELECTION is one line of it, such as '*' for "
           "all\ntests; with options alone all tests are meant. Options:\n" +
           describeOptions() +
           "\nThe exit status is 0 when no test failed, 1 when one did or a selection was refused, "
           "and\n2 when nothing was run or the run did not get to its end.\n";
}

std::string programName(int argc, char** argv)
{
    return argc > 0 && argv[0] != nullptr ? argv[0] : "test";
}

int print(std::string const& text)
{
    std::fputs(text.c_str(), stdout);
    return exitAllPassed;
}

int runSelection(Arguments& arguments, std::string const& program)
{
    CExitGuard const exitGuard;
    CCrashGuard const crashGuard;
    CFileSizeLimit const limit;
    CLogProtection const protection;
    try
    {
        return arguments.options.any ? runWithOptions(arguments, program)
                                     : runWithoutOptions(arguments, program);
    }
    catch (CLogRefusedError const& e)
    {
        printError("", messageOf(e));
    }
    catch (CWorkFolderInUseError const& e)
    {
        printError("", messageOf(e));
    }
    catch (std::exception const& e)
    {
        printError("the test run was ended by an exception: ", messageOf(e));
    }
    catch (...)
    {
        printError("the test run was ended by an exception that is no std::exception.");
    }
    return exitNoVerdict;
}

int runArguments(Arguments& arguments, std::string const& program)
{
    RunOptions const& options = arguments.options;
    if (options.help)
    {
        return print(helpText(program));
    }
    if (options.version)
    {
        return print("qix " QIX_VERSION "\n");
    }
    if (!options.any && arguments.lines.empty() && hasStandardInputEnded())
    {
        printUsage(program);
        return exitNoVerdict;
    }
    return runSelection(arguments, program);
}

int parseAndRun(int argc, char** argv)
{
    Arguments arguments;
    std::optional<CPrematureExitFile> prematureExitFile;
    try
    {
        RunOptions const defaults = readBazelProtocol();
        prematureExitFile.emplace(defaults.prematureExitFile);
        arguments = parseArguments(argc, argv, defaults);
    }
    catch (std::exception const& e)
    {
        printError("", messageOf(e));
        return exitNoVerdict;
    }
    return runArguments(arguments, programName(argc, argv));
}

/// A run whose output was lost has not passed.
int statusWithOutputChecked(int status)
{
    bool const complete = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (complete)
    {
        return status;
    }
    printError("standard output could not be written; a part of it is lost.");
    return status == exitNotAllPassed ? status : exitNoVerdict;
}

} // namespace

int runMain(int argc, char** argv)
{
    std::setlocale(LC_CTYPE, "");
    reserveClosedStandardDescriptors();
    return statusWithOutputChecked(parseAndRun(argc, argv));
}

} // namespace qix
