#include <qix/test.h>

#include "CChildProcess.h"
#include "runner/RunnerTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <string>

#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using test::CChildProcess;
using test::CFunctionTestItem;
using testing::StartsWith;

constexpr int exitStrayProcess = 2;

pid_t forkBySystemCall()
{
    return static_cast<pid_t>(syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0));
}

struct Fork
{
    char const* name;
    pid_t (*call)();
};

constexpr Fork forks[] = {
    {"fork", &fork}, {"_Fork", &_Fork}, {"the system call", &forkBySystemCall}};

/// Where a test can fork.
enum class Place
{
    setUp,
    row,
    body,
    tearDown
};

/// Notes a step, for all processes together: a child that runs it too is seen.
void noteStep(char const* step)
{
    std::ofstream("steps", std::ios::app) << step << '\n' << std::flush;
}

/// Both processes come back. The one that has forked waits for the other.
/// \return the child's exit status, in the process that has forked
int forkAndReturn(Fork const& how)
{
    pid_t const child = how.call();
    int status = 0;
    if (child > 0)
    {
        waitpid(child, &status, 0);
    }
    return WEXITSTATUS(status);
}

/// Forks in one of its steps. The child comes back.
class CForkingTest : public qix::CTestItem
{
public:
    CForkingTest(Place place, Fork const& how) : CTestItem("forking"), m_place(place), m_how(how) {}

protected:
    void setUp() override { doStep("setUp", Place::setUp); }

    void body() override
    {
        subTest("one", [this] { doStep("one", Place::row); });
        subTest("two", [] { noteStep("two"); });
        doStep("body", Place::body);
    }

    void tearDown() override
    {
        doStep("tearDown", Place::tearDown);
        QIX_CHECK(m_status == exitStrayProcess);
    }

private:
    void doStep(char const* name, Place place)
    {
        noteStep(name);
        if (place == m_place)
        {
            m_status = forkAndReturn(m_how);
        }
    }

    Place const m_place;
    Fork const& m_how;
    int m_status = 0;
};

class CForkGuard : public test::RunnerTest
{
protected:
    /// Runs the items in a process of their own, and a test behind them: whatever comes back from
    /// them is not this test.
    void expectSteps(std::string const& steps)
    {
        add("next", [](CFunctionTestItem&, qix::ITestRunner&) { noteStep("next"); });
        testing::internal::CaptureStderr();
        CChildProcess child([this] { return runAll() ? 0 : 1; });
        EXPECT_EQ(child.waitForExit(), 0) << output();
        EXPECT_THAT(testing::internal::GetCapturedStderr(),
                    StartsWith("Error: a process that a test has forked came back from the test; "
                               "it ends here. Let it call _exit().\n"));
        EXPECT_EQ(test::readFile("steps"), steps);
    }
};

class CForkGuardAt : public CForkGuard, public testing::WithParamInterface<Place>
{
protected:
    void expectToEndTheChildOf(Fork const& how)
    {
        m_root->addSubItem(zel::newObj<CForkingTest>(GetParam(), how));
        expectSteps("setUp\none\ntwo\nbody\ntearDown\nnext\n");
    }
};

TEST_P(CForkGuardAt, endsTheChildOfFork)
{
    expectToEndTheChildOf(forks[0]);
}

TEST_P(CForkGuardAt, endsTheChildOfAForkWithoutHandlers)
{
    expectToEndTheChildOf(forks[1]);
}

TEST_P(CForkGuardAt, endsTheChildOfTheSystemCall)
{
    expectToEndTheChildOf(forks[2]);
}

INSTANTIATE_TEST_SUITE_P(CForkGuard, CForkGuardAt,
                         testing::Values(Place::setUp, Place::row, Place::body, Place::tearDown));

TEST_F(CForkGuard, endsTheChildrenOfTestsByHand)
{
    for (Fork const& how : forks)
    {
        add(how.name,
            [&how](CFunctionTestItem&, qix::ITestRunner&)
            {
                noteStep(how.name);
                if (forkAndReturn(how) != exitStrayProcess)
                {
                    throw std::runtime_error("the child has come back");
                }
            });
    }
    expectSteps("fork\n_Fork\nthe system call\nnext\n");
}

TEST_F(CForkGuard, letsAChildRunTestsOfItsOwn)
{
    add("outer",
        [this](CFunctionTestItem&, qix::ITestRunner&)
        {
            CChildProcess child(
                [this]
                {
                    auto const root = zel::newObj<qix::CTestItemGroup>("");
                    addTo(*root, "inner");
                    auto const inner = zel::newObj<test::COpenRunner>(root.get());
                    inner->toggleAll();
                    return inner->go() ? 0 : 1;
                });
            if (child.waitForExit() != 0)
            {
                throw std::runtime_error("the child has not run its test");
            }
        });
    EXPECT_TRUE(runAll()) << output();
}

} // namespace
