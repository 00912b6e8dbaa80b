/// Tells how many bytes a test takes when it has been registered, and when it has run.

#include "registerTests.h"

#include <qix/CConsoleTestRunner.h>
#include <qix/CTestItemGroup.h>

#include <cstdio>

#include <malloc.h>

namespace
{

/// Tells of the tests alone: what they share is there in both of two counts.
double bytesOfEach(std::size_t before)
{
    return static_cast<double>(mallinfo2().uordblks - before) / bench::testCount();
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
    std::size_t const before = mallinfo2().uordblks;
    bench::registerTests(bench::testCount());
    double const registered = bytesOfEach(before);
    runAll();
    std::fprintf(stderr, "%.1f %.1f\n", registered, bytesOfEach(before));
    return 0;
}
