#pragma once

#include <qix/ITestItem.h>
#include <qix/ITestItemFactory.h>
#include <qix/ITestRunner.h>
#include <zel/CBase.h>
#include <zel/P.h>
#include <zel/String.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace test
{

/// A leaf whose work is a function and whose properties are open fields. It counts its runs.
class CFunctionTestItem : public zel::CBase, public virtual qix::ITestItem
{
public:
    using Work = std::function<void(CFunctionTestItem&, qix::ITestRunner&)>;

    explicit CFunctionTestItem(std::string name, Work work = Work(), Duration duration = Short);
    ~CFunctionTestItem() override;

    std::string getName() const override { return m_name; }
    Duration getDuration() const override { return m_duration; }
    bool isInteractive() const override { return m_interactive; }
    bool containsAnyInteractive() const override { return m_interactive; }
    void run(qix::ITestRunner* runner) override;
    void getSubItems(std::vector<zel::P<qix::ITestItem>>& out) override { out.clear(); }
    void log(zel::String const& line) override { m_logLines.push_back(line); }
    std::vector<zel::String> const& getLog() const override { return m_logLines; }

    std::string m_name;
    Work m_work; ///< may be empty: the test succeeds at once then
    Duration m_duration;
    bool m_interactive = false;
    int m_runs = 0;
    std::vector<zel::String> m_logLines;
};

/// A factory whose item comes from a function. It counts its calls.
class CFunctionFactory : public zel::CBase, public virtual qix::ITestItemFactory
{
public:
    using Create = std::function<zel::P<qix::ITestItem>()>;

    explicit CFunctionFactory(Create create);
    ~CFunctionFactory() override;

    zel::P<qix::ITestItem> createTestItem() override;

    int m_calls = 0;

private:
    Create m_create;
};

} // namespace test
