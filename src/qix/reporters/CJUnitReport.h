#pragma once

#include "reporters/CLiveXml.h"
#include "reporters/CReport.h"
#include "reporters/JUnitSchema.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qix
{

/// Writes a JUnit report: one flat suite. It is well-formed whenever the process is killed, and
/// then tells as errors that the run, and the tests that were running, did not finish.
class CJUnitReport : public CReport
{
public:
    CJUnitReport(std::unique_ptr<ILiveFile> file, JUnitSchema schema, ReportContext context);

    /// Writes the report anew, with its counts.
    void finish() override;

    std::string getError() const override { return m_file->getError(); }

private:
    struct Counts
    {
        unsigned long tests = 0;
        unsigned long failures = 0;
        unsigned long errors = 0;
        unsigned long skipped = 0;
    };

    /// What is not kept of a group.
    struct Running
    {
        std::string begin; ///< the case up to what depends on its end
        CLiveXml::Record unfinished = 0;
    };

    void beginTest(Test const& test) override;
    void endTest(Test const& test, TestOutcome const& outcome) override;
    void filterTest(Test const& test, Filter filter) override;

    std::string head(std::string const& counts) const;
    std::string unfinishedRun() const;
    std::string formatCounts() const;
    void appendCase(std::string& xml, Test const& test) const;
    std::string properties(TestProcess const& process) const;
    std::string verdict(Test const& test, TestOutcome const& outcome, TestProcess const& process);

    JUnitSchema m_schema;
    std::string m_start;
    std::chrono::steady_clock::time_point m_begin;
    Counts m_counts;
    std::unique_ptr<ILiveFile> m_file;
    CLiveXml m_xml;
    std::vector<Running> m_running;
    std::string m_record;
    bool m_isComplete; ///< so far
};

} // namespace qix
