#pragma once

#include <qix/ITestItem.h>

namespace qix
{

/// The names that stand for the attributes of a test in QIX_TEST and QIX_TEST_F.
namespace attributes
{

/// @{
/// How long the test is expected to take; see ITestItem::Duration.
constexpr ITestItem::Duration None = ITestItem::None;
constexpr ITestItem::Duration Short = ITestItem::Short;
constexpr ITestItem::Duration Long = ITestItem::Long;
constexpr ITestItem::Duration VeryLong = ITestItem::VeryLong;
constexpr ITestItem::Duration Hours = ITestItem::Hours;
/// @}

/// The test needs a human at the console.
enum Interactivity
{
    Interactive
};

} // namespace attributes

} // namespace qix
