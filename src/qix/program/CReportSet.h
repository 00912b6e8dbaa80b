#pragma once

#include <zel/P.h>

#include "options/RunOptions.h"
#include "reporters/CReport.h"

#include <string>
#include <vector>

namespace qix
{

/// The reports that the options ask for. They listen as long as this lives.
class CReportSet
{
public:
    /// Tells on standard error which reports cannot be written; that is no reason not to run.
    CReportSet(RunOptions const& options, ReportContext const& context);
    CReportSet(CReportSet const&) = delete;
    CReportSet& operator=(CReportSet const&) = delete;
    ~CReportSet();

    /// Completes the reports behind the last run. False when one of them is not complete, which is
    /// told on standard error.
    bool finish();

private:
    struct Entry
    {
        std::string file;
        zel::P<CReport> report;
        bool isErrorTold;
    };

    void add(std::string const& file, zel::P<CReport> const& report);
    static void tellError(Entry& entry);

    std::vector<Entry> m_entries;
};

} // namespace qix
