#include "reporters/CReport.h"

namespace qix
{

void CReport::onRunBegin(RunInfo const& /*run*/)
{
    if (m_depth == 0)
    {
        m_thread = std::this_thread::get_id();
        m_open.clear();
    }
    else if (m_thread != std::this_thread::get_id())
    {
        return;
    }
    ++m_depth;
    if (isReported())
    {
        beginRun();
    }
}

void CReport::onTestBegin(TestInfo const& test)
{
    if (isReported())
    {
        m_open.push_back(makeTest(test));
        beginTest(m_open.back());
    }
}

void CReport::onTestEnd(TestInfo const& test, TestOutcome const& outcome)
{
    if (!isReported() || m_open.empty())
    {
        return;
    }
    Test ended = std::move(m_open.back());
    m_open.pop_back();
    ended.info = &test;
    endTest(ended, outcome);
}

void CReport::onTestFiltered(TestInfo const& test, Filter filter)
{
    if (isReported())
    {
        filterTest(makeTest(test), filter);
    }
}

void CReport::onRunEnd(RunCounts const& counts)
{
    if (m_depth == 0 || m_thread != std::this_thread::get_id())
    {
        return;
    }
    if (isReported())
    {
        endRun(counts);
    }
    --m_depth;
}

bool CReport::isReported() const
{
    return m_depth == 1 && m_thread == std::this_thread::get_id();
}

CReport::Test CReport::makeTest(TestInfo const& info) const
{
    std::size_t groups = 0;
    while (groups < m_open.size() && m_open[groups].info->kind == TestInfo::Group)
    {
        ++groups;
    }
    return {&info, m_context.idOf(info), groups};
}

char const* describe(ITestListener::Filter filter) noexcept
{
    switch (filter)
    {
    case ITestListener::Filter::Duration:
        return "it takes longer than the tests that may run";
    case ITestListener::Filter::Interactive:
        return "it needs a human, and such tests may not run";
    case ITestListener::Filter::NotInteractive:
        return "it needs no human, and only tests that do may run";
    }
    return "";
}

} // namespace qix
