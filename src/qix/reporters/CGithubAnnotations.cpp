#include "reporters/CGithubAnnotations.h"

#include "model/formatFailure.h"

#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

namespace qix
{

namespace
{

constexpr int shownByGithub = 10;

std::string escaped(std::string const& text, std::string_view special)
{
    std::string result;
    for (char const character : text)
    {
        if (special.find(character) == std::string_view::npos)
        {
            result += character;
        }
        else
        {
            char code[4];
            std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned>(character));
            result += code;
        }
    }
    return result;
}

std::string escapedMessage(std::string const& text)
{
    return escaped(text, "%\r\n");
}

std::string escapedProperty(std::string const& text)
{
    return escaped(text, "%\r\n:,");
}

} // namespace

CGithubAnnotations::CGithubAnnotations(std::string const& workspace, ReportContext context)
    : CReport(std::move(context)), m_workspace(workspace.empty() ? "" : workspace + "/")
{
}

void CGithubAnnotations::endTest(Test const& test, TestOutcome const& outcome)
{
    for (CheckFailure const& failure : outcome.failures)
    {
        if (m_errors < shownByGithub)
        {
            printFailure(test, failure);
            ++m_errors;
        }
    }
    std::optional<std::string> const firstFailure = context().process().firstFailure;
    if (firstFailure && m_warnings < shownByGithub)
    {
        printFlaky(test, *firstFailure);
        ++m_warnings;
    }
}

/// What was printed in front of this has ended its line.
void CGithubAnnotations::printFailure(Test const& test, CheckFailure const& failure)
{
    CheckFailure withoutPlace = failure;
    withoutPlace.file.clear();
    print("error", failure.file, failure.line, test.id, formatFailure(withoutPlace));
}

void CGithubAnnotations::printFlaky(Test const& test, std::string const& firstFailure)
{
    // The progress of a test that has passed has no line for itself.
    std::putchar('\n');
    auto const& location = test.info->location;
    print("warning", location ? location->file : "", location ? location->line : 0, test.id,
          "flaky: it failed before it passed\n" + firstFailure);
}

void CGithubAnnotations::print(char const* level, std::string const& file, int line,
                               std::string const& title, std::string const& text) const
{
    std::string command = std::string("::") + level + ' ';
    if (!file.empty())
    {
        command +=
            "file=" + escapedProperty(inWorkspace(file)) + ",line=" + std::to_string(line) + ",";
    }
    command += "title=" + escapedProperty(title) + "::" + escapedMessage(text) + "\n";
    std::fwrite(command.data(), 1, command.size(), stdout);
    std::fflush(stdout);
}

std::string CGithubAnnotations::inWorkspace(std::string const& file) const
{
    bool const isInside = !m_workspace.empty() && file.rfind(m_workspace, 0) == 0;
    return isInside ? file.substr(m_workspace.size()) : file;
}

} // namespace qix
