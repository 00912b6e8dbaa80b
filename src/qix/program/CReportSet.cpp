#include "program/CReportSet.h"

#include "reporters/CGithubAnnotations.h"
#include "reporters/CJUnitReport.h"
#include "reporters/CJsonEvents.h"
#include "reporters/posix/CMappedFile.h"
#include "runner/printError.h"

#include <cstdlib>
#include <memory>

namespace qix
{

namespace
{

std::string fromEnvironment(char const* name)
{
    char const* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace

CReportSet::CReportSet(RunOptions const& options, ReportContext const& context)
{
    if (!options.eventsFile.empty())
    {
        add(options.eventsFile, zel::newObj<CJsonEvents>(options.eventsFile, context));
    }
    if (!options.junitFile.empty())
    {
        add(options.junitFile,
            zel::newObj<CJUnitReport>(std::make_unique<CMappedFile>(options.junitFile),
                                      options.junitSchema, context));
    }
    if (options.annotatesForGithub)
    {
        add("", zel::newObj<CGithubAnnotations>(fromEnvironment("GITHUB_WORKSPACE"), context));
    }
}

CReportSet::~CReportSet()
{
    for (Entry const& entry : m_entries)
    {
        removeTestListener(entry.report.get());
    }
}

void CReportSet::add(std::string const& file, zel::P<CReport> const& report)
{
    m_entries.push_back({file, report, false});
    tellError(m_entries.back());
    addTestListener(report);
}

bool CReportSet::finish()
{
    bool areComplete = true;
    for (Entry& entry : m_entries)
    {
        entry.report->finish();
        tellError(entry);
        areComplete = areComplete && !entry.isErrorTold;
    }
    return areComplete;
}

void CReportSet::tellError(Entry& entry)
{
    std::string const error = entry.report->getError();
    if (!error.empty() && !entry.isErrorTold)
    {
        printError("", ("the report '" + entry.file + "' cannot be written: " + error).c_str());
        entry.isErrorTold = true;
    }
}

} // namespace qix
