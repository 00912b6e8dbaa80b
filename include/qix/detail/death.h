#pragma once

#include <qix/CValueWriter.h>
#include <qix/detail/narrowText.h>
#include <qix/detail/subTest.h>
#include <qix/export.h>

#include <string>
#include <string_view>

namespace qix::detail
{

/// How a child process is expected to end.
enum class ProcessEnd
{
    BySignal,
    WithStatus
};

/// Runs the statement in a child process. True when that ends as expected; otherwise its end is
/// captured for the message of the check. Throws zel::CError when no child can be made.
/// \param number   of the signal, or the status
/// \param written  becomes what the child has written to standard error
QIX_EXPORT bool runInChild(ProcessEnd end, CFunctionRef statement, int number,
                           std::string& written);

/// Whether the output contains the text; otherwise captures both for the message.
QIX_EXPORT bool containsText(std::string_view written, std::string_view text);

/// Captures output that does not match, for the message.
QIX_EXPORT void captureMismatch(std::string_view written, std::string_view expected);

/// What QIX_CHECK_DIES and QIX_CHECK_EXITS check.
inline bool endsProcess(ProcessEnd end, CFunctionRef statement, int number)
{
    std::string written;
    return runInChild(end, statement, number, written);
}

/// \copydoc endsProcess(ProcessEnd, CFunctionRef, int)
/// \param expected  a part of what is written to standard error, or a matcher: a class with the
///                  operations matches() and describe()
template <typename Expected>
bool endsProcess(ProcessEnd end, CFunctionRef statement, int number, Expected const& expected)
{
    std::string written;
    if (!runInChild(end, statement, number, written))
    {
        return false;
    }
    if constexpr (isNarrowText<Expected>)
    {
        return containsText(written, viewOf(expected));
    }
    else
    {
        bool const matches = expected.matches(written);
        if (!matches)
        {
            CValueWriter out;
            expected.describe(out);
            captureMismatch(written, out.written());
        }
        return matches;
    }
}

} // namespace qix::detail
