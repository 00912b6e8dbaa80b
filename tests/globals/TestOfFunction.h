#pragma once

#include <qix/ITestItem.h>
#include <zel/CBase.h>
#include <zel/String.h>

#include <string>
#include <utility>
#include <vector>

/// A short test that calls a function.
class TestOfFunction : public zel::CBase, public virtual qix::ITestItem
{
public:
    TestOfFunction(std::string name, void (*work)()) : m_name(std::move(name)), m_work(work) {}

    std::string getName() const override { return m_name; }
    Duration getDuration() const override { return Short; }
    bool isInteractive() const override { return false; }
    bool containsAnyInteractive() const override { return false; }
    void run(qix::ITestRunner*) override { m_work(); }
    void getSubItems(std::vector<zel::P<qix::ITestItem>>& out) override { out.clear(); }
    void log(zel::String const& line) override { m_lines.push_back(line); }
    std::vector<zel::String> const& getLog() const override { return m_lines; }

private:
    std::string m_name;
    void (*m_work)();
    std::vector<zel::String> m_lines;
};
