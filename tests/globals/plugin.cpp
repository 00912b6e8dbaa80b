// A plug-in with tests of its own, which it registers while it is loaded.

#include <qix/qix.h>

#include "TestOfFunction.h"

#include <stdexcept>

namespace
{

int g_runs = 0;

bool const registered = []
{
    auto const group = zel::newObj<qix::CTestItemGroup>("plugin");
    group->addSubItem(zel::newObj<TestOfFunction>("success", [] { ++g_runs; }));
    group->addSubItem(
        zel::newObj<TestOfFunction>("skipped", [] { throw qix::CTestSkippedException(); }));
    group->addSubItem(zel::newObj<TestOfFunction>(
        "aborted", [] { throw qix::CTestAbortedException("stopped"); }));
    group->addSubItem(
        zel::newObj<TestOfFunction>("failed", [] { throw std::runtime_error("failed"); }));
    qix::CTestItemGroup::global()->addSubItem(group);
    return true;
}();

} // namespace

extern "C" __attribute__((visibility("default"))) qix::ITestItem* rootOfPlugin()
{
    return registered ? qix::CTestItemGroup::global().get() : nullptr;
}

extern "C" __attribute__((visibility("default"))) int runsOfPlugin()
{
    return g_runs;
}

extern "C" __attribute__((visibility("default"))) void throwFromPlugin()
{
    throw qix::CTestSkippedException();
}
