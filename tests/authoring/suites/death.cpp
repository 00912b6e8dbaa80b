// Statements that end the process, and reasons for skips and aborts that are put together.

#include <qix/CTestFolder.h>
#include <qix/CValueWriter.h>
#include <qix/test.h>
#include <zel/String.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <stdexcept>
#include <thread>

#include <unistd.h>

namespace
{

/// It tells when it is destroyed, and removes its folder, which happens once: in the parent.
struct CStatic
{
    ~CStatic() { std::puts("The static object is released."); }

    qix::CTestFolder m_folder = qix::CTestFolder("folder");
};

CStatic& staticObject()
{
    static CStatic object;
    return object;
}

/// A matcher as users write them.
struct HasSize
{
    bool matches(std::string const& text) const { return text.size() == size; }
    void describe(qix::CValueWriter& out) const
    {
        out.text("has the size ");
        out.value(size);
    }

    std::size_t size;
};

[[noreturn]] void complainAndAbort()
{
    std::cerr << "bad input: 7\n";
    std::abort();
}

void writeOwnHandler()
{
    std::fputs("own handler\n", stderr);
}

} // namespace

QIX_TEST(dies, passes)
{
    QIX_CHECK_DIES(std::abort(), SIGABRT);
    QIX_CHECK_DIES(std::raise(SIGSEGV), SIGSEGV);
    QIX_CHECK_DIES(kill(getpid(), SIGKILL), SIGKILL);
    QIX_CHECK_DIES(std::terminate(), SIGABRT);
    QIX_CHECK_DIES(complainAndAbort(), SIGABRT, "bad input");
    QIX_CHECK_DIES(complainAndAbort(), SIGABRT, std::string("input: 7"));
    QIX_CHECK_DIES(complainAndAbort(), SIGABRT, HasSize{13});
    QIX_REQUIRE_DIES(std::abort(), SIGABRT);
    QIX_CHECK_EXITS(std::exit(3), 3);
    QIX_CHECK_EXITS(_exit(0), 0);
    QIX_CHECK_EXITS(std::quick_exit(4), 4, "");
    QIX_CHECK_EXITS((std::fputs("usage", stderr), std::exit(2)), 2, "usage");
    QIX_CHECK_EXITS((std::atexit(&writeOwnHandler), std::exit(5)), 5, "own handler");
    QIX_REQUIRE_EXITS(std::exit(6), 6);
}

QIX_TEST(dies, fails)
{
    int calls = 0;
    QIX_CHECK_DIES(++calls, SIGABRT);
    QIX_CHECK(calls == 0);
    QIX_CHECK_DIES(std::exit(3), SIGABRT);
    QIX_CHECK_DIES(throw std::runtime_error("boom"), SIGABRT) << "a message, calls: " << calls;
    QIX_CHECK_DIES(std::raise(SIGKILL), SIGABRT);
    QIX_CHECK_DIES(complainAndAbort(), SIGABRT, "good input");
    QIX_CHECK_DIES(complainAndAbort(), SIGABRT, HasSize{7});
    QIX_CHECK_EXITS(complainAndAbort(), 0);
    QIX_CHECK_EXITS(std::exit(3), 4);
    QIX_CHECK_EXITS(++calls, 0);
    QIX_REQUIRE_EXITS(std::exit(1), 0);
    QIX_FAIL("not come to");
}

QIX_TEST(dies, leavesTheParentAlone)
{
    std::string const folder = staticObject().m_folder.getPath().getText().toCPSafe();
    std::fputs("[begun ", stdout);
    QIX_CHECK_EXITS((std::puts("not seen"), std::exit(0)), 0);
    QIX_CHECK_EXITS((std::cout << "not seen" << std::flush, std::exit(0)), 0);
    QIX_CHECK_EXITS((chdir("/"), std::exit(0)), 0);
    std::fputs("ended]", stdout);
    QIX_CHECK(std::filesystem::exists(folder));
    log("behind");
}

QIX_TEST(dies, withThreads)
{
    std::atomic<bool> ends{false};
    std::thread thread(
        [&ends]
        {
            while (!ends)
            {
                std::this_thread::yield();
            }
        });
    for (int i = 0; i < 20; ++i)
    {
        QIX_CHECK_DIES(std::abort(), SIGABRT);
        QIX_CHECK_EXITS(std::exit(i), i);
    }
    ends = true;
    thread.join();
}

QIX_TEST(reasons, ofASkip)
{
    QIX_SKIP("no device ") << 7 << std::hex << ", " << 255 << " caf\xc3\xa9";
}

QIX_TEST(reasons, ofASkipWithoutAFirstPart)
{
    QIX_SKIP() << 7;
}

QIX_TEST(reasons, ofASkipWithoutAny)
{
    QIX_SKIP();
}

QIX_TEST(reasons, ofAnAbort)
{
    QIX_ABORT(std::string("no server ")) << std::setw(3) << 7;
}

QIX_TEST(reasons, ofAnAbortInWideText)
{
    bool const isThere = false;
    isThere ? static_cast<void>(0) : QIX_ABORT(zel::String(L"caf\u00e9"));
}
