#pragma once

#include <qix/ITestListener.h>
#include <zel/CBase.h>

#include "reporters/ReportContext.h"

#include <cstddef>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace qix
{

/// A listener that reports the tests of the program, and not those which a test runs itself by a
/// runner of its own.
class CReport : public zel::CBase, public virtual ITestListener
{
public:
    void onRunBegin(RunInfo const& run) final;
    void onTestBegin(TestInfo const& test) final;
    void onTestEnd(TestInfo const& test, TestOutcome const& outcome) final;
    void onTestFiltered(TestInfo const& test, Filter filter) final;
    void onRunEnd(RunCounts const& counts) final;

    /// Completes the report behind the last run.
    virtual void finish() {}

    /// Why the report is not complete; empty when nothing is wrong.
    virtual std::string getError() const { return std::string(); }

protected:
    /// What is being reported.
    struct Test
    {
        TestInfo const* info;
        std::string id;
        std::size_t groups; ///< how many of its names are those of groups around it
    };

    explicit CReport(ReportContext context) : m_context(std::move(context)) {}

    ReportContext const& context() const noexcept { return m_context; }

    virtual void beginRun() {}
    virtual void beginTest(Test const& /*test*/) {}
    virtual void endTest(Test const& /*test*/, TestOutcome const& /*outcome*/) {}
    virtual void filterTest(Test const& /*test*/, Filter /*filter*/) {}
    virtual void endRun(RunCounts const& /*counts*/) {}

private:
    bool isReported() const;
    Test makeTest(TestInfo const& info) const;

    ReportContext m_context;
    std::thread::id m_thread;
    std::size_t m_depth = 0; ///< of runs inside one another on the reported thread
    std::vector<Test> m_open;
};

/// What the filter tells of the test, in one sentence.
char const* describe(ITestListener::Filter filter) noexcept;

} // namespace qix
