#include "model/formatFailure.h"

#include "text/formatLocation.h"
#include "text/withIndentedLines.h"

namespace qix
{

std::string formatFailure(CheckFailure const& failure)
{
    std::string text;
    if (!failure.file.empty())
    {
        text = formatLocation({failure.file.c_str(), failure.line}) + ": ";
    }
    if (failure.check.empty())
    {
        return text + withIndentedLines(failure.values);
    }
    text += failure.check + " failed";
    if (!failure.values.empty())
    {
        text += "\n    " + withIndentedLines(failure.values);
    }
    return text;
}

/// The first failure begins the text. The others stand below it, indented as the first one is in
/// the list of failed tests.
std::string formatFailures(std::vector<CheckFailure> const& failures, std::size_t count)
{
    std::string list = formatFailure(failures.front());
    for (std::size_t i = 1; i < failures.size(); ++i)
    {
        list += "\n  " + formatFailure(failures[i]);
    }
    if (count > failures.size())
    {
        list += "\n  and " + std::to_string(count - failures.size()) + " more";
    }
    return list;
}

} // namespace qix
