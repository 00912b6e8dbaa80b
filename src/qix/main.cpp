#include <qix/CConsoleTestRunner.h>
#include <qix/main.h>

#include "standardInput.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace qix
{

namespace
{

constexpr int exitAllPassed = 0;
constexpr int exitNotAllPassed = 1;
constexpr int exitNothingRun = 2;

void printHowToSelect(std::string const& program)
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

void printError(std::string message)
{
    std::fflush(stdout);
    std::replace(message.begin(), message.end(), '\n', ' ');
    std::fprintf(stderr, "Error: %s\n", message.c_str());
}

int runSelection(std::vector<char const*> lines)
{
    try
    {
        bool const passed =
            CConsoleTestRunner::doMain(static_cast<int>(lines.size()), lines.data());
        return passed ? exitAllPassed : exitNotAllPassed;
    }
    catch (std::exception const& e)
    {
        printError(std::string("the test run was ended by an exception: ") + e.what());
    }
    catch (...)
    {
        printError("the test run was ended by an exception that is no std::exception.");
    }
    return exitNothingRun;
}

} // namespace

int runMain(int argc, char** argv)
{
    std::setlocale(LC_CTYPE, "");
    int const programNames = std::min(argc, 1);
    std::vector<char const*> const lines(argv + programNames, argv + argc);
    if (lines.empty() && hasStandardInputEnded())
    {
        printHowToSelect(argc > 0 ? argv[0] : "test");
        return exitNothingRun;
    }
    return runSelection(lines);
}

} // namespace qix
