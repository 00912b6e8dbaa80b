#pragma once

#include <qix/ITestItem.h>
#include <qix/ITestRunner.h>
#include <zel/CBase.h>

#include <functional>
#include <string>
#include <vector>

namespace test
{

/// A runner that runs nothing, and notes the names of what it is given to run.
class CNotingRunner : public zel::CBase, public virtual qix::ITestRunner
{
public:
    void runTestItem(qix::ITestItem* item) override
    {
        m_names.push_back(item == nullptr ? "null" : item->getName());
        if (m_whenRun)
        {
            m_whenRun();
        }
    }
    bool beginSubTest(std::string const&, qix::ITestItem::Duration, bool, bool) override
    {
        return false;
    }
    void endSubTest_Failed(std::exception const&) override {}
    void endSubTest_Aborted() override {}
    void endSubTest_Skipped() override {}
    void endSubTest_Success() override {}

    std::vector<std::string> m_names;
    std::function<void()> m_whenRun; ///< may be empty
};

} // namespace test
