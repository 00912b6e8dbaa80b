/// Tests that are written against the interfaces alone, without the macros and their registry.

#include "count.h"

#include <qix/CTestItemGroup.h>
#include <qix/main.h>

#include <utility>

namespace
{

/// The least that a leaf test can be.
class CEmptyTest : public zel::CBase, public virtual qix::ITestItem
{
public:
    explicit CEmptyTest(std::string name) : m_name(std::move(name)) {}

    std::string getName() const override { return m_name; }
    Duration getDuration() const override { return Short; }
    bool isInteractive() const override { return false; }
    bool containsAnyInteractive() const override { return false; }
    void run(qix::ITestRunner*) override {}
    void getSubItems(std::vector<zel::P<qix::ITestItem>>& out) override { out.clear(); }
    void log(zel::String const& line) override { m_lines.push_back(line); }
    std::vector<zel::String> const& getLog() const override { return m_lines; }

private:
    std::string m_name;
    std::vector<zel::String> m_lines;
};

class CEmptyTestFactory : public zel::CBase, public virtual qix::ITestItemFactory
{
public:
    explicit CEmptyTestFactory(int number) : m_number(number) {}

    zel::P<qix::ITestItem> createTestItem() override
    {
        return zel::newObj<CEmptyTest>(bench::testName(m_number));
    }

private:
    int m_number;
};

} // namespace

int main(int argc, char** argv)
{
    auto const group = zel::newObj<qix::CTestItemGroup>("bench");
    int const count = bench::testCount();
    for (int i = 0; i < count; ++i)
    {
        group->addFactory(zel::newObj<CEmptyTestFactory>(i));
    }
    qix::CTestItemGroup::global()->addSubItem(group);
    return qix::runMain(argc, argv);
}
