#pragma once

#include "reporters/CReport.h"

#include <string>

namespace qix
{

/// Prints a line for each failure and each flaky test, which GitHub shows beside the source; the
/// first ten of both, since it takes no more.
class CGithubAnnotations : public CReport
{
public:
    /// \param workspace  the folder that the sources are in; it is left out of their names
    CGithubAnnotations(std::string const& workspace, ReportContext context);

private:
    void endTest(Test const& test, TestOutcome const& outcome) override;
    void printFailure(Test const& test, CheckFailure const& failure);
    void printFlaky(Test const& test, std::string const& firstFailure);
    void print(char const* level, std::string const& file, int line, std::string const& title,
               std::string const& text) const;
    std::string inWorkspace(std::string const& file) const;

    std::string m_workspace;
    int m_errors = 0;
    int m_warnings = 0;
};

} // namespace qix
