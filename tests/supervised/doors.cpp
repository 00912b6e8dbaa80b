// Tests that wait until a file is there, so that the run can be looked at meanwhile.
#include <qix/main.h>
#include <qix/qix.h>
#include <qix/test.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include <unistd.h>

namespace
{

std::string pathOf(std::string const& name)
{
    return std::string(std::getenv("DOORS")) + '/' + name;
}

/// Tells by another file that it waits, and who does.
void waitFor(std::string const& name)
{
    std::ofstream(pathOf(name + ".new")) << getpid() << '\n';
    std::rename(pathOf(name + ".new").c_str(), pathOf(name + ".waits").c_str());
    while (access(pathOf(name).c_str(), F_OK) != 0)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

} // namespace

QIX_TEST(doors, first)
{
    std::puts("printed");
    waitFor("first");
}

QIX_TEST(doors, second)
{
    QIX_CHECK(std::system("sleep 31415 & echo $! > \"$DOORS/sleeper\"") == 0);
    waitFor("second");
    // A process that is about to end is still left behind.
    QIX_CHECK(std::system("read -r sleeper <\"$DOORS/sleeper\"; kill $sleeper; "
                          "while kill -0 $sleeper 2>&-; do sleep 0.01; done") == 0);
    QIX_NOTE_FAILURE("this one fails");
}

QIX_TEST(doors, "große Tür 門が開くまで待つ")
{
    waitFor("third");
}

QIX_TEST(doors, last)
{
    waitFor("last");
}

QIX_TEST(stubborn, waits)
{
    std::signal(SIGTERM, SIG_IGN);
    waitFor("nothing");
}

int main(int argc, char** argv)
{
    return qix::runMain(argc, argv);
}
