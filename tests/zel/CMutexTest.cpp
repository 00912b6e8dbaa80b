#include <zel/CMutex.h>
#include <zel/CMutexLock.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace
{

using zel::CMutex;
using zel::CMutexLock;
using zel::P;

void countUnderLock(P<CMutex> const& mutex, int& counter)
{
    for (int i = 0; i < 1000; ++i)
    {
        CMutexLock const lock(mutex);
        ++counter;
    }
}

TEST(CMutex, letsOneThreadInAtATime)
{
    P<CMutex> const mutex = zel::newObj<CMutex>();
    int counter = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back([&] { countUnderLock(mutex, counter); });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(counter, 4000);
}

TEST(CMutex, theHolderMayLockAgain)
{
    CMutex mutex;
    mutex.lock();
    mutex.lock();
    mutex.unlock();
    mutex.unlock();
}

TEST(CMutexLock, keepsTheMutexAlive)
{
    P<CMutex> mutex = zel::newObj<CMutex>();
    CMutex const* const raw = mutex.get();
    CMutexLock const lock(mutex);
    EXPECT_EQ(raw->getRefCount(), 2);
    mutex = nullptr;
    EXPECT_EQ(raw->getRefCount(), 1);
}

TEST(CMutexLock, givesTheMutexBack)
{
    P<CMutex> const mutex = zel::newObj<CMutex>();
    {
        CMutexLock const lock(mutex);
    }
    EXPECT_EQ(mutex->getRefCount(), 1);
    int counter = 0;
    std::thread([&] { countUnderLock(mutex, counter); }).join();
    EXPECT_EQ(counter, 1000);
}

TEST(GlobalMutex, isOneAndRecursive)
{
    P<CMutex> const mutex = zel::getGlobalMutex();
    EXPECT_EQ(mutex, zel::getGlobalMutex());
    CMutexLock const outer(mutex);
    CMutexLock const inner(zel::getGlobalMutex());
}

/// A static object that needs the mutex when it is destroyed, after those of the library's own.
struct LockedAtExit
{
    ~LockedAtExit() { CMutexLock const lock(zel::getGlobalMutex()); }
};

TEST(GlobalMutexDeathTest, outlivesStaticObjects)
{
    EXPECT_EXIT(
        {
            static LockedAtExit const lockedAtExit;
            CMutexLock const lock(zel::getGlobalMutex());
            std::exit(0); // NOLINT(concurrency-mt-unsafe): the only thread of its process
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
