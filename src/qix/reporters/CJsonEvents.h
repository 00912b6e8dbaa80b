#pragma once

#include "reporters/CReport.h"
#include "reporters/posix/CAppendedFile.h"
#include "text/CJsonWriter.h"

#include <chrono>
#include <string>
#include <vector>

namespace qix
{

/// Writes what happens as JSON, one object a line, each of which is in the file when what it tells
/// of has happened. Only a process that is killed while it writes leaves a line without an end.
class CJsonEvents : public CReport
{
public:
    CJsonEvents(std::string const& file, ReportContext context);

    std::string getError() const override { return m_file.getError(); }

private:
    void beginRun() override;
    void beginTest(Test const& test) override;
    void endTest(Test const& test, TestOutcome const& outcome) override;
    void filterTest(Test const& test, Filter filter) override;
    void endRun(RunCounts const& counts) override;

    void beginEvent(char const* event);
    void endEvent();
    void writeText(char const* key, std::string_view text);
    std::string describe(Test const& test);
    void writeVerdict(Test const& test, TestOutcome const& outcome);
    void writeFailures(TestOutcome const& outcome);
    void writeProcess(TestProcess const& process);
    void writeOutput(TestInfo const& test);

    CAppendedFile m_file;
    CJsonWriter m_writer;
    std::string m_line;
    std::vector<std::string> m_running; ///< what each event of a test tells, of those that run
    std::chrono::steady_clock::time_point m_begin;
};

} // namespace qix
