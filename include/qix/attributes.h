#pragma once

#include <qix/ITestItem.h>

#include <cstddef>

namespace qix
{

/// The names that stand for the attributes of a test in QIX_TEST and the macros like it.
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

/// The test fails when it passes, and passes when it fails. Skips and aborts stay what they are.
enum Expectation
{
    ShouldFail
};

/// The test is not run, but skipped: `Disabled("waits for the new server")`.
struct Disabled
{
    /// \param why  a text that lives as long as the program, for people
    constexpr explicit Disabled(char const* why) noexcept : reason(why) {}

    char const* reason; ///< why
};

/// Words by which tests are told from others: `Tags("net", "slow")`.
struct Tags
{
    static constexpr std::size_t most = 8; ///< how many tags a test may have

    /// \param tags  texts that live as long as the program
    template <typename... Char>
    constexpr explicit Tags(Char const*... tags) noexcept : texts{tags...}
    {
        static_assert(sizeof...(tags) <= most, "a test has 8 tags at most");
    }

    char const* texts[most]; ///< null behind the last one
};

} // namespace attributes

} // namespace qix
