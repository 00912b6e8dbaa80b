#pragma once

#include <qix/CConsoleTestRunner.h>
#include <qix/CTestItemGroup.h>

#include "CFunctionTestItem.h"
#include "COutputCapture.h"
#include "CTempWorkDirectory.h"
#include "readFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace test
{

/// A runner whose fields a test can see.
class COpenRunner : public qix::CConsoleTestRunner
{
public:
    using qix::CConsoleTestRunner::CConsoleTestRunner;
    using qix::CConsoleTestRunner::FailInfo;
    using qix::CConsoleTestRunner::m_beginCount;
    using qix::CConsoleTestRunner::m_failures;
    using qix::CConsoleTestRunner::m_indent;
    using qix::CConsoleTestRunner::m_items;
    using qix::CConsoleTestRunner::m_log;
    using qix::CConsoleTestRunner::m_maxDuration;
    using qix::CConsoleTestRunner::m_nAborted;
    using qix::CConsoleTestRunner::m_nFailed;
    using qix::CConsoleTestRunner::m_nOk;
    using qix::CConsoleTestRunner::m_nSkipped;
    using qix::CConsoleTestRunner::m_onlyInteractive;
    using qix::CConsoleTestRunner::m_runInteractive;
    using qix::CConsoleTestRunner::m_running;
    using qix::CConsoleTestRunner::m_selected;
    using qix::CConsoleTestRunner::RunningRecord;

    /// The counts in the order of the report: successes, failures, aborts, skips.
    std::vector<int> getCounts() const { return {m_nOk, m_nFailed, m_nAborted, m_nSkipped}; }
};

using Duration = qix::ITestItem::Duration;

/// A root group to fill, in a folder of its own.
class RunnerTest : public testing::Test
{
protected:
    using Work = CFunctionTestItem::Work;

    CFunctionTestItem& add(std::string const& name, Work work = Work(),
                           Duration duration = Duration::Short)
    {
        return addTo(*m_root, name, std::move(work), duration);
    }

    // Not static: from 13 on, g++ suspects what a function without an object returns by reference
    // to belong to the name.
    CFunctionTestItem& addTo(qix::CTestItemGroup& group, std::string const& name,
                             Work work = Work(), Duration duration = Duration::Short)
    {
        auto const item = zel::newObj<CFunctionTestItem>(name, std::move(work), duration);
        group.addSubItem(item);
        return *item;
    }

    qix::CTestItemGroup& addGroup(std::string const& name)
    {
        auto const group = zel::newObj<qix::CTestItemGroup>(name);
        m_root->addSubItem(group);
        return *group;
    }

    void addNull()
    {
        m_root->addFactory(zel::newObj<CFunctionFactory>([] { return zel::P<qix::ITestItem>(); }));
    }

    COpenRunner& runner()
    {
        if (m_runner == nullptr)
        {
            m_runner = zel::newObj<COpenRunner>(m_root.get());
        }
        return *m_runner;
    }

    /// Selects everything and runs it.
    bool runAll()
    {
        runner().m_selected.assign(runner().m_items.size(), true);
        return runner().go();
    }

    std::string output() const { return m_output.getText(); }
    static std::string log() { return readFile("testLog.txt"); }

    zel::P<qix::CTestItemGroup> m_root = zel::newObj<qix::CTestItemGroup>("");

private:
    CTempWorkDirectory m_folder;
    zel::P<COpenRunner> m_runner;
    COutputCapture m_output;
};

} // namespace test
