#pragma once

#include <qix/ITestItem.h>

#include <vector>

namespace qix
{

/// What is known of a run before its first test.
struct RunInfo
{
    std::vector<ITestItem*> items; ///< what is selected, in order; not owned, null where missing
    ITestItem::Duration maxDuration = ITestItem::Short; ///< longer tests are filtered out
    bool runInteractive = false;  ///< otherwise tests that need a human are filtered out
    bool onlyInteractive = false; ///< items without such a test are filtered out
};

} // namespace qix
