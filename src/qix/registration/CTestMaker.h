#pragma once

#include <qix/CTestItem.h>

#include "registration/RegisteredTest.h"

namespace qix::detail
{

/// Makes the items of registered tests.
class CTestMaker
{
public:
    static zel::P<ITestItem> make(RegisteredFunction const& test);

    /// If the class cannot be constructed, the item is a test that fails for that reason.
    static zel::P<ITestItem> make(RegisteredFixture const& test);

private:
    static zel::P<ITestItem> construct(RegisteredFixture const& test);
    static void locate(CTestItem& item, RegisteredTest const& test) noexcept;
};

} // namespace qix::detail
