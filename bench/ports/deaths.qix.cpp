// What ends the process, and how; what is tested are the C++ library's ways out.

#include <qix/test.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

void complain(std::string const& what, int status)
{
    std::fprintf(stderr, "error: %s\n", what.c_str());
    std::exit(status);
}

int readThroughNoexcept() noexcept
{
    return std::stoi("not a number");
}

} // namespace

QIX_TEST(Abort, isASignal)
{
    QIX_CHECK_DIES(std::abort(), SIGABRT);
}

QIX_TEST(Abort, isWhatTerminateDoes)
{
    QIX_CHECK_DIES(std::terminate(), SIGABRT);
    QIX_CHECK_DIES(readThroughNoexcept(), SIGABRT, "stoi");
}

QIX_TEST(Abort, isWhatAThreadThatIsNotJoinedDoes)
{
    QIX_CHECK_DIES({ std::thread forgotten([] {}); }, SIGABRT);
}

QIX_TEST(Signals, endTheProcess)
{
    for (int const signal : {SIGTERM, SIGKILL, SIGINT, SIGUSR1})
    {
        QIX_CHECK_DIES(std::raise(signal), signal);
    }
}

// The second check is wrong on purpose: it is another signal.
QIX_TEST(Signals, differ)
{
    QIX_CHECK_DIES(std::raise(SIGTERM), SIGTERM);
    QIX_CHECK_DIES(std::raise(SIGTERM), SIGINT);
}

QIX_TEST(Exit, hasAStatus)
{
    QIX_CHECK_EXITS(std::exit(0), 0);
    QIX_CHECK_EXITS(std::_Exit(7), 7);
    QIX_CHECK_EXITS(std::quick_exit(3), 3);
}

QIX_TEST(Exit, writesWhy)
{
    QIX_CHECK_EXITS(complain("no file", 2), 2, "error: no file");
    QIX_CHECK_EXITS(complain("no room", 3), 3, "room");
}

// Wrong on purpose: in the status, in the text, and in that it does not end at all.
QIX_TEST(Exit, isCompared)
{
    QIX_CHECK_EXITS(complain("no file", 2), 3, "no file");
    QIX_CHECK_EXITS(complain("no file", 2), 2, "no room");
    QIX_CHECK_EXITS(std::string("goes on").clear(), 0);
}

QIX_TEST(Exit, canEndTheTest)
{
    QIX_REQUIRE_EXITS(std::exit(1), 1);
    QIX_REQUIRE_EXITS(std::exit(1), 2);
    QIX_CHECK(false);
}

QIX_TEST(Child, changesNothingHere)
{
    std::vector<int> numbers = {1};
    QIX_CHECK_EXITS(
        {
            numbers.push_back(2);
            std::exit(static_cast<int>(numbers.size()));
        },
        2);
    QIX_CHECK(numbers.size() == 1U);
}
