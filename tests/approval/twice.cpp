// One runner that goes twice: the second run starts anew.
#include "suite.h"

#include <cstdio>
#include <stdexcept>

using namespace suite;

namespace
{

/// Fails and talks only the first time.
void workAtLast(Self& self, ITestRunner&)
{
    if (self.m_runs == 1)
    {
        self.log("a line of the first run");
        throw std::runtime_error("not yet");
    }
    self.m_logLines.clear();
}

} // namespace

int main()
{
    auto const root = group("", {group("group", {leaf("works at last", workAtLast)})});
    qix::CConsoleTestRunner runner(root.get());
    runner.handleSelectionInput("*");
    std::printf("first run: %s\n", runner.go() ? "passed" : "failed");
    std::printf("second run: %s\n", runner.go() ? "passed" : "failed");
    return 0;
}
