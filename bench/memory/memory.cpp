/// Tells how many bytes a test takes when it has been registered, and when it has run.

#include "registerTests.h"

#include <qix/CConsoleTestRunner.h>
#include <qix/CTestItemGroup.h>

#include <cstdio>

#include <malloc.h>

namespace
{

/// Large pieces of the heap are mapped, and counted apart from the others.
std::size_t bytesOnHeap()
{
    auto const info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// Tells of the tests alone: what they share is there in both of two counts.
double bytesOfEach(std::size_t before)
{
    return static_cast<double>(bytesOnHeap() - before) / bench::testCount();
}

void runAll()
{
    qix::CConsoleTestRunner runner(qix::CTestItemGroup::global().get());
    runner.toggleAll();
    runner.go();
}

} // namespace

int main()
{
    std::size_t const before = bytesOnHeap();
    bench::registerTests(bench::testCount());
    double const registered = bytesOfEach(before);
    runAll();
    std::fprintf(stderr, "%.1f %.1f\n", registered, bytesOfEach(before));
    return 0;
}
