#include <qix/CConsoleTestRunner.h>
#include <qix/CTestItemGroup.h>
#include <qix/CTestSkippedException.h>
#include <qix/util.h>
#include <zel/CSystemAccountManager.h>

#include "CFunctionTestItem.h"
#include "COutputCapture.h"
#include "CTempWorkDirectory.h"
#include "passesAsOrdinaryUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include <unistd.h>

namespace
{

using qix::CTestSkippedException;
using qix::throwSkippedExceptionIfAdmin;
using qix::throwSkippedExceptionIfNotAdmin;
using testing::HasSubstr;

/// Runs both tests of privileges under the runner. \return what it prints
std::string runBothSkips()
{
    int passed = 0;
    auto const group = zel::newObj<qix::CTestItemGroup>("");
    auto const add = [&](char const* name, void (*skip)())
    {
        group->addSubItem(zel::newObj<test::CFunctionTestItem>(
            name,
            [&passed, skip](test::CFunctionTestItem&, qix::ITestRunner&)
            {
                skip();
                ++passed;
            }));
    };
    add("admin", &throwSkippedExceptionIfNotAdmin);
    add("ordinary", &throwSkippedExceptionIfAdmin);

    test::COutputCapture const output;
    qix::CConsoleTestRunner runner(group.get());
    runner.toggleAll();
    EXPECT_TRUE(runner.go());
    EXPECT_EQ(passed, 1) << "what stands behind the skip does not run";
    return output.getText();
}

TEST(util, ordinaryUserSkipsWhatNeedsAnAdministrator)
{
    EXPECT_TRUE(test::passesAsOrdinaryUser(
        []
        {
            EXPECT_THROW(throwSkippedExceptionIfNotAdmin(), CTestSkippedException);
            EXPECT_NO_THROW(throwSkippedExceptionIfAdmin());
        }));
}

TEST(util, administratorSkipsWhatNeedsAnOrdinaryUser)
{
    if (geteuid() != 0)
    {
        GTEST_SKIP() << "needs administrator rights";
    }
    EXPECT_NO_THROW(throwSkippedExceptionIfNotAdmin());
    EXPECT_THROW(throwSkippedExceptionIfAdmin(), CTestSkippedException);
    EXPECT_THROW(throwSkippedExceptionIfAdmin(), zel::CError);
    EXPECT_THROW(throwSkippedExceptionIfAdmin(), std::exception);
}

TEST(util, rightsAreLookedUpOnEveryCallAndTheManagerIsMadeOnce)
{
    if (geteuid() != 0)
    {
        GTEST_SKIP() << "needs administrator rights to give away";
    }
    auto const manager = zel::CSystemAccountManager::get();
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_NO_THROW(throwSkippedExceptionIfNotAdmin());
        ASSERT_EQ(seteuid(65534), 0);
        EXPECT_THROW(throwSkippedExceptionIfNotAdmin(), CTestSkippedException);
        ASSERT_EQ(seteuid(0), 0);
        EXPECT_EQ(zel::CSystemAccountManager::get(), manager);
    }
}

TEST(util, runnerReportsASkippedTestAndDoesNotRunTheRest)
{
    test::CTempWorkDirectory const folder;
    EXPECT_THAT(runBothSkips(), HasSubstr("1 OK, 0 Failed, 0 Aborted, 1 Skipped"));
    EXPECT_TRUE(test::passesAsOrdinaryUser(
        [] { EXPECT_THAT(runBothSkips(), HasSubstr("1 OK, 0 Failed, 0 Aborted, 1 Skipped")); }));
}

} // namespace
