#include "reporters/CGithubAnnotations.h"

#include "model/formatFailure.h"

#include <cstdio>
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
        if (m_printed < shownByGithub)
        {
            print(test, failure);
            ++m_printed;
        }
    }
}

/// What was printed in front of this has ended its line.
void CGithubAnnotations::print(Test const& test, CheckFailure const& failure)
{
    CheckFailure withoutPlace = failure;
    withoutPlace.file.clear();
    std::string line = "::error ";
    if (!failure.file.empty())
    {
        line += "file=" + escapedProperty(inWorkspace(failure.file)) +
                ",line=" + std::to_string(failure.line) + ",";
    }
    line += "title=" + escapedProperty(test.id) +
            "::" + escapedMessage(formatFailure(withoutPlace)) + "\n";
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

std::string CGithubAnnotations::inWorkspace(std::string const& file) const
{
    bool const isInside = !m_workspace.empty() && file.rfind(m_workspace, 0) == 0;
    return isInside ? file.substr(m_workspace.size()) : file;
}

} // namespace qix
