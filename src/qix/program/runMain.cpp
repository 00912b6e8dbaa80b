#include <qix/CConsoleTestRunner.h>
#include <qix/main.h>

#include "guards/exitStatus.h"
#include "guards/posix/CExitGuard.h"
#include "program/posix/CFileSizeLimit.h"
#include "program/posix/standardDescriptors.h"
#include "program/posix/standardInput.h"
#include "runner/posix/logFile.h"
#include "text/messageOf.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

namespace qix
{

namespace
{

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

/// Prints the text with a blank for each line end. Takes no memory: there may be none left.
void printInOneLine(char const* text)
{
    for (std::size_t length = std::strcspn(text, "\n"); text[length] != '\0';
         length = std::strcspn(text, "\n"))
    {
        std::fprintf(stderr, "%.*s ", static_cast<int>(length), text);
        text += length + 1;
    }
    std::fputs(text, stderr);
}

void printError(char const* message, char const* reason = "")
{
    std::fflush(stdout);
    std::fprintf(stderr, "Error: %s", message);
    printInOneLine(reason);
    std::fputc('\n', stderr);
}

int runSelection(char** begin, char** end)
{
    CExitGuard const guard;
    CFileSizeLimit const limit;
    CLogProtection const protection;
    try
    {
        std::vector<char const*> lines(begin, end);
        bool const passed =
            CConsoleTestRunner::doMain(static_cast<int>(lines.size()), lines.data());
        return passed ? exitAllPassed : exitNotAllPassed;
    }
    catch (CLogRefusedError const& e)
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

int runArguments(int argc, char** argv)
{
    int const programNames = std::min(argc, 1);
    if (argc <= programNames && hasStandardInputEnded())
    {
        printHowToSelect(argc > 0 ? argv[0] : "test");
        return exitNoVerdict;
    }
    return runSelection(argv + programNames, argv + argc);
}

/// A run that nobody could read has not passed.
int withOutputChecked(int status)
{
    bool const complete = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (complete)
    {
        return status;
    }
    printError("standard output could not be written; a part of it is lost.");
    return status == exitAllPassed ? exitNoVerdict : status;
}

} // namespace

int runMain(int argc, char** argv)
{
    std::setlocale(LC_CTYPE, "");
    occupyClosedStandardDescriptors();
    return withOutputChecked(runArguments(argc, argv));
}

} // namespace qix
