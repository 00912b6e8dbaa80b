// Groups, names and outcomes to choose from by options.
#include "suite.h"

#include <stdexcept>

using namespace suite;

namespace
{

void fail(Self&, ITestRunner&)
{
    throw std::runtime_error("it fails");
}

void report(ITestRunner& runner, char const* name)
{
    if (runner.beginSubTest(name, ITestItem::Short, false, false))
    {
        runner.endSubTest_Success();
    }
}

void reportRows(Self&, ITestRunner& runner)
{
    report(runner, "row");
    report(runner, "other row");
    report(runner, "row");
}

} // namespace

int main(int argc, char** argv)
{
    return run(argc, argv,
               {group("network", {leaf("resolves"), leaf("connects", fail),
                                  leaf("downloads", succeed, ITestItem::Long),
                                  interactive("asks for a password"), leaf("")}),
                group("files", {leaf("twice"), leaf("twice"), leaf("über.all", fail),
                                group("table", {leaf("rows", reportRows)})}),
                leaf("alone")});
}
