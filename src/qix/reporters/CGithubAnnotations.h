#pragma once

#include "reporters/CReport.h"

#include <string>

namespace qix
{

/// Prints a line for each failure, which GitHub shows beside the source; the first ten, since it
/// takes no more.
class CGithubAnnotations : public CReport
{
public:
    /// \param workspace  the folder that the sources are in; it is left out of their names
    CGithubAnnotations(std::string const& workspace, ReportContext context);

private:
    void endTest(Test const& test, TestOutcome const& outcome) override;
    void print(Test const& test, CheckFailure const& failure);
    std::string inWorkspace(std::string const& file) const;

    std::string m_workspace;
    int m_printed = 0;
};

} // namespace qix
