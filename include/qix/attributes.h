#pragma once

#include <qix/ITestItem.h>

namespace qix
{

/// The names that stand for the attributes of a test in QIX_TEST and QIX_TEST_F.
namespace attributes
{

/// See ITestItem::Duration. Small, since a run may have a million tests.
enum Duration : unsigned char
{
    None = ITestItem::None,
    Short = ITestItem::Short,
    Long = ITestItem::Long,
    VeryLong = ITestItem::VeryLong,
    Hours = ITestItem::Hours
};

/// The test needs a human at the console.
enum Interactivity
{
    Interactive
};

} // namespace attributes

} // namespace qix
