// Tests that crash, each in another way.
#include <qix/CConsoleTestRunner.h>
#include <qix/CTestItem.h>
#include <qix/CTestItemGroup.h>
#include <qix/ITestItemFactory.h>
#include <qix/subTest.h>
#include <qix/test.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

// The sanitizers tell of these first, each in its own words.
#define CRASHING __attribute__((noinline, no_sanitize("undefined")))

namespace
{

CRASHING void useNullPointer()
{
    int* volatile nowhere = nullptr;
    *static_cast<int volatile*>(nowhere) = 1;
}

CRASHING int overflowStack(int depth)
{
    char volatile frame[4096];
    frame[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : overflowStack(depth + 1) + frame[0];
}

CRASHING void divideByZero()
{
    int volatile zero = 0;
    int volatile result = 1;
#if defined(__x86_64__) || defined(__i386__)
    result = result / zero;
#else
    // Other processors go on with some number.
    std::raise(result + zero == 1 ? SIGFPE : SIGABRT);
#endif
}

void throwError()
{
    throw std::runtime_error("nobody catches this");
}

void throwFromNoexcept() noexcept
{
    throwError();
}

void endInOwnHandler(int /*signal*/)
{
    constexpr char const text[] = "the test's own handler\n";
    _exit(write(STDERR_FILENO, text, sizeof text - 1) < 0 ? 4 : 3);
}

struct HandlerFromBeforeMain
{
    HandlerFromBeforeMain()
    {
        if (std::getenv("HANDLER_BEFORE_MAIN") != nullptr)
        {
            std::signal(SIGSEGV, endInOwnHandler);
            std::set_terminate([] { endInOwnHandler(0); });
        }
    }
};

HandlerFromBeforeMain const handlerFromBeforeMain;

class CAbortingTest : public qix::CTestItem
{
public:
    explicit CAbortingTest(std::string const& name) : CTestItem(name) {}

protected:
    void body() override { std::abort(); }
};

class CPassingTest : public qix::CTestItem
{
public:
    CPassingTest() : CTestItem("child") {}

protected:
    void body() override {}
};

class CPassingGroup : public qix::CTestItemGroup
{
public:
    CPassingGroup() : CTestItemGroup("inner group") { addSubItem(zel::newObj<CPassingTest>()); }
};

/// Behind a group, whose result in the log has no line end.
class CGroupThatCrashesItself : public qix::CTestItemGroup
{
public:
    CGroupThatCrashesItself() : CTestItemGroup("group itself")
    {
        addSubItem(zel::newObj<CPassingGroup>());
    }

    void run(qix::ITestRunner* runner) override
    {
        CTestItemGroup::run(runner);
        std::abort();
    }
};

class CCrashingFactory : public zel::CBase, public virtual qix::ITestItemFactory
{
public:
    zel::P<qix::ITestItem> createTestItem() override { std::abort(); }
};

struct ItemsByHand
{
    ItemsByHand()
    {
        auto const root = qix::CTestItemGroup::global();
        root->addSubItem(zel::newObj<CAbortingTest>("two\nlines\x1b"));
        root->addSubItem(zel::newObj<CAbortingTest>("long " + std::string(1100, 'x')));
        root->addSubItem(zel::newObj<CGroupThatCrashesItself>());
        if (std::getenv("CRASHING_FACTORY") != nullptr)
        {
            root->addFactory(zel::newObj<CCrashingFactory>());
        }
    }
};

ItemsByHand const itemsByHand;

} // namespace

QIX_TEST(Crash, nullPointer)
{
    QIX_CHECK(1 + 1 == 2);
    QIX_CHECK(true);
    useNullPointer();
}

QIX_TEST(Crash, beforeAnyCheck)
{
    useNullPointer();
}

QIX_TEST(Crash, raised)
{
    QIX_REQUIRE(true);
    std::raise(SIGSEGV);
}

QIX_TEST(Crash, behindFailedCheck)
{
    QIX_CHECK(true);
    QIX_CHECK(false);
    useNullPointer();
}

QIX_TEST(Crash, stackOverflow)
{
    QIX_CHECK(true);
    QIX_CHECK(overflowStack(0) == 0);
}

QIX_TEST(Crash, divisionByZero)
{
    QIX_CHECK(true);
    divideByZero();
}

QIX_TEST(Crash, inSubTests)
{
    qix::subTest("first row", [] { QIX_CHECK(true); });
    qix::subTest("second row", [] { qix::subTest("third cell", [] { std::abort(); }); });
}

QIX_TEST(Crash, inRunOfItsOwn)
{
    auto const root = zel::newObj<qix::CTestItemGroup>("");
    root->addSubItem(zel::newObj<CAbortingTest>("inner"));
    std::filesystem::create_directory("inside");
    std::filesystem::current_path("inside");
    qix::CConsoleTestRunner runner(root.get());
    runner.toggleAll();
    runner.go();
}

QIX_TEST(Crash, behindThrows)
{
    QIX_CHECK_THROWS(throw 1);
    std::abort();
}

QIX_TEST(Crash, behindThrowsAs)
{
    QIX_CHECK_THROWS_AS(throw 1, int);
    std::abort();
}

QIX_TEST(Crash, behindNothrow)
{
    QIX_CHECK_NOTHROW(static_cast<void>(0));
    std::abort();
}

QIX_TEST(Terminate, exceptionLeavesNoexcept)
{
    QIX_CHECK(true);
    throwFromNoexcept();
}

QIX_TEST(Terminate, exceptionLeavesThread)
{
    QIX_CHECK(true);
    std::thread(throwError).join();
}

QIX_TEST(Terminate, threadIsNotJoined)
{
    std::thread const forgotten([] { pause(); });
}

QIX_TEST(Threads, nullPointer)
{
    QIX_CHECK(true);
    std::thread(
        []
        {
            QIX_CHECK(true);
            useNullPointer();
        })
        .join();
}

QIX_TEST(Handlers, ofTestStays)
{
    auto const before = std::signal(SIGSEGV, endInOwnHandler);
    useNullPointer();
    std::signal(SIGSEGV, before);
}

QIX_TEST(Handlers, ignoredSignalStays)
{
    std::signal(SIGTRAP, SIG_IGN);
    QIX_CHECK(std::raise(SIGTRAP) == 0);
}

QIX_TEST(Children, crashInSilence)
{
    pid_t const child = fork();
    if (child == 0)
    {
        useNullPointer();
    }
    int status = 0;
    QIX_REQUIRE(waitpid(child, &status, 0) == child);
    QIX_CHECK(WTERMSIG(status) == SIGSEGV);
}
