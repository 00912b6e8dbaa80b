// Runs of tests and the threads that take part in them.

#include "CChildProcess.h"
#include "checks/bodyTest.h"

#include <zel/thread.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>

#include <unistd.h>

namespace
{

using test::CChildProcess;
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

/// Forks again and again while another thread does what each child does, too.
/// \return how many children have ended with it
int countForksWhileAnotherThreadWorks(std::function<void()> const& work)
{
    int count = 0;
    std::atomic<bool> isStopped{false};
    std::thread thread(
        [&]
        {
            while (!isStopped)
            {
                work();
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
