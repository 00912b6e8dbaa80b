/// Makes the tests that the program qix registers, and neither lists nor runs them.

#include "registerTests.h"

#include <qix/CTestItemGroup.h>

#include <vector>

namespace
{

void makeBelow(qix::ITestItem& item)
{
    std::vector<zel::P<qix::ITestItem>> children;
    item.getSubItems(children);
    for (zel::P<qix::ITestItem> const& child : children)
    {
        makeBelow(*child);
    }
}

} // namespace

int main()
{
    bench::registerTests(bench::testCount());
    makeBelow(*qix::CTestItemGroup::global());
}
