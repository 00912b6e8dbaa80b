// Tests that do what no test should, each in a group of its own between two that pass.
#include <qix/main.h>
#include <qix/qix.h>
#include <qix/test.h>

#include <array>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// NOLINTBEGIN: these are the faults.
[[gnu::noinline]] void crash()
{
    int volatile* volatile nothing = nullptr;
    *nothing = 1;
}

[[gnu::noinline]] int overflow(int depth)
{
    int volatile room[1000] = {depth};
    return depth < 0 ? 0 : overflow(depth + 1) + room[0];
}

[[noreturn]] void throwSomething()
{
    throw std::runtime_error("nobody may catch this");
}

void neverThrows() noexcept
{
    throwSomething();
}

[[noreturn]] void waitForever()
{
    for (;;)
    {
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
}

/// Starts a program in a session of its own, whose parent ends at once.
void startDaemon()
{
    pid_t const child = fork();
    if (child == 0)
    {
        setsid();
        if (fork() == 0)
        {
            execlp("sleep", "sleep", "31415", nullptr);
        }
        _exit(0);
    }
    waitpid(child, nullptr, 0);
}

struct CrashAtEnd
{
    ~CrashAtEnd()
    {
        if (isArmed)
        {
            crash();
        }
    }
    bool isArmed = false;
} crashAtEnd;

class CCrashingSetUp : public qix::CTestItem
{
protected:
    void setUp() override { crash(); }
};

class CCrashingTearDown : public qix::CTestItem
{
protected:
    void tearDown() override { crash(); }
};
// NOLINTEND

} // namespace

#define FAULT(group)                                                                               \
    QIX_TEST(group, before)                                                                        \
    {                                                                                              \
        QIX_CHECK(true);                                                                           \
    }                                                                                              \
    QIX_TEST(group, fault)

#define END(group)                                                                                 \
    QIX_TEST(group, after)                                                                         \
    {                                                                                              \
        QIX_CHECK(true);                                                                           \
    }

FAULT(segv)
{
    std::puts("printed before the crash");
    qix::log("recorded before the crash");
    QIX_CHECK(true);
    crash();
}
END(segv)

FAULT(abort)
{
    std::abort();
}
END(abort)

FAULT(terminate)
{
    neverThrows();
}
END(terminate)

FAULT(exit)
{
    std::exit(3);
}
END(exit)

FAULT(plainExit)
{
    _exit(0);
}
END(plainExit)

FAULT(quickExit)
{
    std::quick_exit(0);
}
END(quickExit)

FAULT(killed)
{
    raise(SIGKILL);
}
END(killed)

FAULT(stackOverflow)
{
    overflow(0);
}
END(stackOverflow)

FAULT(row)
{
    qix::subTest("good", [] {});
    qix::subTest("bad", [] { crash(); });
}
END(row)

QIX_TEST_F(CCrashingSetUp, setUp, fault)
{
}
END(setUp)

QIX_TEST_F(CCrashingTearDown, tearDown, fault)
{
}
END(tearDown)

FAULT(endless)
{
    for (bool volatile goesOn = true; goesOn;)
    {
    }
}
END(endless)

FAULT(ignoresTerm)
{
    std::signal(SIGTERM, SIG_IGN);
    waitForever();
}
END(ignoresTerm)

FAULT(stopped)
{
    raise(SIGSTOP);
}
END(stopped)

FAULT(daemon)
{
    startDaemon();
}
END(daemon)

FAULT(openPipe)
{
    QIX_CHECK(std::system("sleep 31415 &") == 0);
}
END(openPipe)

FAULT(daemonAndCrash)
{
    startDaemon();
    crash();
}
END(daemonAndCrash)

FAULT(muchOutput)
{
    char const* const size = std::getenv("SUPERVISED_MEGABYTES");
    std::vector<char> const megabyte(1U << 20U, 'x');
    for (int left = size == nullptr ? 16 : std::atoi(size); left > 0; --left)
    {
        std::fwrite(megabyte.data(), 1, megabyte.size(), stdout);
    }
}
END(muchOutput)

FAULT(closedDescriptors)
{
    for (int descriptor = 0; descriptor < 256; ++descriptor)
    {
        close(descriptor);
    }
}
END(closedDescriptors)

FAULT(comma)
{
    for (char const* const name : {"de_DE.UTF-8", "C"})
    {
        std::setlocale(LC_ALL, name);
    }
    std::setlocale(LC_ALL, "de_DE.UTF-8");
}
END(comma)

FAULT(memoryLimit)
{
    rlimit const limit = {1U << 28U, 1U << 28U};
    QIX_REQUIRE(setrlimit(RLIMIT_AS, &limit) == 0);
    std::vector<char> const much(1U << 30U);
}
END(memoryLimit)

FAULT(threads)
{
    std::thread([] { waitForever(); }).detach();
}
END(threads)

FAULT(killsGroup)
{
    kill(0, SIGKILL);
}
END(killsGroup)

FAULT(killsParent)
{
    kill(getppid(), SIGKILL);
    waitForever();
}
END(killsParent)

FAULT(waits)
{
    startDaemon();
    std::puts("waiting");
    std::fflush(stdout);
    qix::subTest("row", [] {});
    waitForever();
}
END(waits)

/// Passes when it has been tried before.
FAULT(flaky)
{
    char const* const file = "../tried";
    bool const isFirst = access(file, F_OK) != 0;
    std::fclose(std::fopen(file, "w"));
    std::puts(isFirst ? "first try" : "second try");
    QIX_CHECK(!isFirst);
}
END(flaky)

/// Uses much, and does nothing wrong.
FAULT(busy)
{
    std::vector<char> const much(64U << 20U, 'x');
    for (std::clock_t const end = std::clock() + CLOCKS_PER_SEC / 10; std::clock() < end;)
    {
    }
}
END(busy)

FAULT(staticDestructor)
{
    crashAtEnd.isArmed = true;
}
END(staticDestructor)

int main(int argc, char** argv)
{
    return qix::runMain(argc, argv);
}
