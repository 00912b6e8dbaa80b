// Runs of tests and the threads that take part in them.

#include "CChildProcess.h"
#include "CNotingRunner.h"
#include "checks/bodyTest.h"

#include <qix/CTestFailedException.h>
#include <zel/String.h>
#include <zel/thread.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

namespace
{

using test::CChildProcess;
using testing::EndsWith;
using testing::HasSubstr;

/// So long a child process may take before it counts as hanging.
constexpr unsigned patience = 60; // seconds

/// The exit status of work that may hang: then it is minus SIGALRM.
int statusOf(std::function<int()> const& work)
{
    CChildProcess child(
        [&work]
        {
            alarm(patience);
            return work();
        });
    return child.waitForExit();
}

/// A test with a body, and a way of its own to record a line.
class CLoggingTest : public test::CBodyTest
{
public:
    CLoggingTest(std::function<void()> body, std::function<void()> recordLine)
        : CBodyTest(std::move(body)), m_recordLine(std::move(recordLine))
    {
    }

    void log(zel::String const&) override { m_recordLine(); }

private:
    std::function<void()> m_recordLine;
};

/// One thread records a line, for which it waits for the other's lock; the other one, which holds
/// it, checks something meanwhile.
int recordWhileAnotherThreadChecks()
{
    std::mutex own;
    std::promise<void> locked;
    std::promise<void> recording;
    auto const check = [&]
    {
        std::lock_guard<std::mutex> const lock(own);
        locked.set_value();
        recording.get_future().wait();
        QIX_CHECK(1 == 2);
    };
    auto const record = [&]
    {
        recording.set_value();
        std::lock_guard<std::mutex> const lock(own);
    };
    auto const body = [&]
    {
        std::thread thread(check);
        locked.get_future().wait();
        qix::log("line");
        thread.join();
    };
    CLoggingTest item(body, record);
    try
    {
        item.run(nullptr);
    }
    catch (std::exception const& e)
    {
        return std::string(e.what()).find("1 == 2") == std::string::npos ? 2 : 0;
    }
    return 1;
}

TEST(CTestContext, aLineIsRecordedWithoutALockThatACheckNeeds)
{
    EXPECT_EQ(statusOf(&recordWhileAnotherThreadChecks), 0);
}

TEST(CTestContext, aRunDoesNotEndWhileAThreadRecordsALine)
{
    std::promise<void> recording;
    std::atomic<bool> isRecorded{false};
    std::thread thread;
    auto const body = [&]
    {
        thread = std::thread([] { qix::log("line"); });
        recording.get_future().wait();
    };
    auto const record = [&]
    {
        recording.set_value();
        for (int i = 0; i < 20; ++i)
        {
            zel::threadYield(true);
        }
        isRecorded = true;
    };
    CLoggingTest item(body, record);
    item.run(nullptr);
    EXPECT_TRUE(isRecorded);
    thread.join();
}

TEST(CTestContext, runsOfTwoThreadsMayEndInTheOrderOfTheirBeginning)
{
    std::promise<void> firstRuns;
    std::promise<void> secondRuns;
    std::thread first(
        [&]
        {
            test::run(
                [&]
                {
                    firstRuns.set_value();
                    secondRuns.get_future().wait();
                });
        });
    firstRuns.get_future().wait();
    std::string const text = test::run(
        [&]
        {
            secondRuns.set_value();
            first.join();
            std::thread([] { QIX_CHECK(1 == 2); }).join();
        });
    EXPECT_EQ(test::withoutPlaces(text), "QIX_CHECK(1 == 2) failed\n    with 1 == 2");
}

/// Runs sub-tests, and checks something when one has ended.
class CCheckingRunner : public test::CNotingRunner
{
public:
    bool beginSubTest(std::string const&, qix::ITestItem::Duration, bool, bool) override
    {
        return true;
    }
    void endSubTest_Success() override { QIX_CHECK(1 == 2); }
};

TEST(CTestContext, whatIsCheckedBehindASubTestBelongsToTheTestAroundIt)
{
    test::CBodyTest item([] { qix::subTest("row", [] {}); });
    CCheckingRunner runner;
    EXPECT_THROW(item.run(&runner), qix::CTestFailedException);
}

/// Ends a test while another thread fails checks, which throw when there is no test any more.
/// \return the text of the failure, and how many checks were taken
std::pair<std::string, int> endWhileAnotherThreadChecks()
{
    std::atomic<int> taken{0};
    auto const checkUntilTheEnd = [&taken]
    {
        try
        {
            for (;;)
            {
                QIX_CHECK(1 == 2);
                ++taken;
            }
        }
        catch (qix::CTestFailedException const&)
        {
        }
    };
    std::thread thread;
    std::string const text = test::run(
        [&]
        {
            thread = std::thread(checkUntilTheEnd);
            while (taken < 200)
            {
                std::this_thread::yield();
            }
        });
    thread.join();
    return {text, taken};
}

TEST(CTestContext, noCheckIsLostWhileTheTestEnds)
{
    for (int round = 0; round < 50; ++round)
    {
        auto const [text, taken] = endWhileAnotherThreadChecks();
        ASSERT_THAT(text, EndsWith("and " + std::to_string(taken - 100) + " more"));
    }
}

/// Lets threads do some work at the same time, with nothing between them that orders it.
void workOnThreads(std::function<void()> const& work)
{
    std::atomic<int> waiting{4};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [&]
            {
                --waiting;
                while (waiting > 0)
                {
                    std::this_thread::yield();
                }
                for (int j = 0; j < 250; ++j)
                {
                    work();
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}

TEST(CTestContext, threadsMayFailChecksAtTheSameTime)
{
    std::string const text = test::run([] { workOnThreads([] { QIX_CHECK(1 == 2); }); });
    EXPECT_THAT(text, HasSubstr("and 900 more"));
}

TEST(CTestContext, threadsMayRecordLinesAtTheSameTime)
{
    test::CBodyTest item([] {});
    workOnThreads([&item] { item.log("line"); });
    EXPECT_EQ(item.getLog().size(), 1000U);
}

/// Forks again and again while another thread does what each child does, too.
/// \return how many children have ended with it
int countForksWhileAnotherThreadWorks(std::function<void()> const& work)
{
    // What the other thread leaves behind makes forks dearer, so it works so often for each.
    constexpr int worksOfEachFork = 500;
    std::atomic<int> count{0};
    std::atomic<bool> isStopped{false};
    std::thread thread(
        [&]
        {
            for (int done = 0; !isStopped;)
            {
                if (done < (count + 1) * worksOfEachFork)
                {
                    work();
                    ++done;
                }
            }
        });
    auto const workOnce = [&work]
    {
        work();
        return 0;
    };
    while (count < 200 && statusOf(workOnce) == 0)
    {
        ++count;
    }
    isStopped = true;
    thread.join();
    return count;
}

TEST(CTestContext, forkedChildrenMayCheckWhateverOtherThreadsDo)
{
    test::run([] { EXPECT_EQ(countForksWhileAnotherThreadWorks([] { QIX_CHECK(1 == 2); }), 200); });
}

TEST(CTestContext, forkedChildrenMayRecordWhateverOtherThreadsDo)
{
    test::run([] { EXPECT_EQ(countForksWhileAnotherThreadWorks([] { qix::log("line"); }), 200); });
}

} // namespace
