#include <zel/thread.h>

#include <gtest/gtest.h>

#include <sys/resource.h>

namespace
{

long countVoluntarySwitches()
{
    rusage usage = {};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

TEST(threadYield, givesTheProcessorAway)
{
    long const before = countVoluntarySwitches();
    zel::threadYield(true);
    EXPECT_GT(countVoluntarySwitches(), before);
}

TEST(threadYield, returnsWhenNobodyElseIsReady)
{
    zel::threadYield(false);
}

} // namespace
