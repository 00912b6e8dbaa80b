#pragma once

#include <qix/ITestListener.h>
#include <zel/CBase.h>
#include <zel/P.h>

#include <functional>
#include <string>
#include <vector>

namespace test
{

/// Notes what it is told, a line for each.
class CNotingListener : public zel::CBase, public virtual qix::ITestListener
{
public:
    using Lines = std::vector<std::string>;

    void onRunBegin(qix::RunInfo const& run) override
    {
        m_runs.push_back(run);
        note("run begins");
    }

    void onTestBegin(qix::TestInfo const& test) override
    {
        m_tests.push_back(test);
        note(pathOf(test) + " begins");
    }

    void onTestEnd(qix::TestInfo const& test, qix::TestOutcome const& outcome) override
    {
        m_outcomes.push_back(outcome);
        note(pathOf(test) + " " + wordFor(outcome.kind));
    }

    void onTestFiltered(qix::TestInfo const& test, Filter filter) override
    {
        m_tests.push_back(test);
        note(pathOf(test) + " filtered by " + wordFor(filter));
    }

    void onRunEnd(qix::RunCounts const& counts) override
    {
        note("run ends: " + std::to_string(counts.ok) + " " + std::to_string(counts.failed) + " " +
             std::to_string(counts.aborted) + " " + std::to_string(counts.skipped));
    }

    Lines m_lines;
    std::vector<qix::RunInfo> m_runs;
    std::vector<qix::TestInfo> m_tests; ///< that have begun or been filtered
    std::vector<qix::TestOutcome> m_outcomes;
    std::function<void(std::string const&)> m_whenTold; ///< gets the line; may be empty

private:
    static std::string pathOf(qix::TestInfo const& test)
    {
        std::string path;
        for (std::string const& name : test.names)
        {
            path += (path.empty() ? "" : ".") + name;
        }
        return path;
    }

    static std::string wordFor(qix::TestOutcome::Kind kind)
    {
        switch (kind)
        {
        case qix::TestOutcome::Ok:
            return "ok";
        case qix::TestOutcome::Failed:
            return "failed";
        case qix::TestOutcome::Aborted:
            return "aborted";
        case qix::TestOutcome::Skipped:
            return "skipped";
        }
        return "?";
    }

    static std::string wordFor(Filter filter)
    {
        switch (filter)
        {
        case Filter::Duration:
            return "duration";
        case Filter::Interactive:
            return "interactive";
        case Filter::NotInteractive:
            return "not interactive";
        }
        return "?";
    }

    void note(std::string const& line)
    {
        m_lines.push_back(line);
        if (m_whenTold)
        {
            m_whenTold(line);
        }
    }
};

/// Adds a listener while it lives.
class CScopedListener
{
public:
    CScopedListener() { qix::addTestListener(m_listener); }
    ~CScopedListener() { qix::removeTestListener(m_listener.get()); }
    CScopedListener(CScopedListener const&) = delete;
    CScopedListener& operator=(CScopedListener const&) = delete;

    CNotingListener& operator*() const noexcept { return *m_listener; }
    CNotingListener* operator->() const noexcept { return m_listener.get(); }

private:
    zel::P<CNotingListener> const m_listener = zel::newObj<CNotingListener>();
};

} // namespace test
