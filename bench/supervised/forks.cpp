/// The processes of a run in which each test has one of its own, and nothing else: the process that
/// has made the same tests forks, the child does what a test does and ends as such a process ends,
/// and is waited for.

#include "registerBusyTests.h"

#include <qix/CTestItemGroup.h>
#include <zel/P.h>

#include <cstdlib>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

void makeAll(qix::ITestItem& item)
{
    std::vector<zel::P<qix::ITestItem>> children;
    item.getSubItems(children);
    for (zel::P<qix::ITestItem> const& child : children)
    {
        makeAll(*child);
    }
}

} // namespace

int main()
{
    bench::registerBusyTests();
    makeAll(*qix::CTestItemGroup::global());
    for (int left = bench::testCount(); left > 0; --left)
    {
        pid_t const child = fork();
        if (child == 0)
        {
            bench::beBusy();
            std::exit(0);
        }
        if (child == -1 || waitpid(child, nullptr, 0) != child)
        {
            return 1;
        }
    }
    return 0;
}
