// Tests that do what no test should, each in a group of its own between two that pass.
#include <qix/CTestItemGroup.h>
#include <qix/ITestItemFactory.h>
#include <qix/main.h>
#include <qix/qix.h>
#include <qix/test.h>
#include <zel/CBase.h>
#include <zel/P.h>

#include <array>
#include <atomic>
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

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// NOLINTBEGIN: these are the faults.
std::time_t g_clockOffset = 0;

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

/// Starts a program in a session of its own, whose parent ends at once. Comes back when it runs,
/// which closes the last end of the pipe.
void startDaemon()
{
    int ends[2];
    QIX_REQUIRE(pipe2(ends, O_CLOEXEC) == 0);
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
    close(ends[1]);
    char nothing;
    QIX_CHECK(read(ends[0], &nothing, 1) == 0);
    close(ends[0]);
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

class CCrashingFactory : public zel::CBase, public virtual qix::ITestItemFactory
{
public:
    zel::P<qix::ITestItem> createTestItem() override
    {
        crash();
        return nullptr;
    }
};

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

/// Each of the processes starts others until there are enough.
FAULT(forkBomb)
{
    constexpr int limit = 64;
    void* const memory = mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto& count = *new (memory) std::atomic<int>(0);
    while (count.fetch_add(1) < limit)
    {
        fork();
    }
    waitForever();
}
END(forkBomb)

FAULT(clockSetBack)
{
    g_clockOffset = -3600;
}
END(clockSetBack)

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

/// Two threads, and both of them wait for ever.
FAULT(deadlock)
{
    std::thread([] { waitForever(); }).join();
}
END(deadlock)

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

/// The clock of everything in this process.
extern "C" [[gnu::visibility("default")]] std::time_t time(std::time_t* out) noexcept
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    std::time_t const shown = now.tv_sec + g_clockOffset;
    return out == nullptr ? shown : *out = shown;
}

/// Before any test runs, all items are made, so that this is of use for one run only.
void addCrashingFactory()
{
    auto const group = zel::newObj<qix::CTestItemGroup>("crashingFactory");
    group->addFactory(zel::newObj<CCrashingFactory>());
    qix::CTestItemGroup::global()->addSubItem(group);
}

int main(int argc, char** argv)
{
    if (std::getenv("SUPERVISED_CRASHING_FACTORY") != nullptr)
    {
        addCrashingFactory();
    }
    return qix::runMain(argc, argv);
}
