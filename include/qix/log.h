#pragma once

#include <qix/detail/logLine.h>
#include <qix/export.h>

#include <string_view>

namespace zel
{
class String;
}

namespace qix
{

namespace detail
{

/// Records a line of the running test; see CTestItem::log().
QIX_EXPORT void logBytes(std::string_view line);
QIX_EXPORT void logText(zel::String const& line);

} // namespace detail

/// Records one line of the running test's output: text as CTestItem::log() takes it, and any other
/// value as a failed check shows it. Safe to call
/// from threads that the test has started. Throws zel::CError outside of tests.
template <typename T>
void log(T const& line)
{
    if constexpr (detail::isDecodedText<T>)
    {
        detail::logText(line);
    }
    else
    {
        detail::logBytes(detail::lineOf(line));
    }
}

} // namespace qix
