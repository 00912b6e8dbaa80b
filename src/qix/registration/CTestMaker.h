#pragma once

#include <qix/CTestItem.h>

#include "registration/RegisteredTest.h"

namespace qix::detail
{

/// Makes the items of tests that are registered one by one.
class CTestMaker
{
public:
    static zel::P<ITestItem> make(RegisteredFunction const& test);
    static zel::P<ITestItem> make(RegisteredFixture const& test);

    /// Tells the item where the test is written.
    static void locate(CTestItem& item, RegisteredTest const& test) noexcept;

    /// Forgets what an earlier run has recorded.
    static void forgetLog(CTestItem& item) noexcept;

    /// Gives the object that is made for a run of the test what is known of the test.
    static void callAs(CTestItem const& test, CTestItem& object);
};

} // namespace qix::detail
