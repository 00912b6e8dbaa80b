#include "registerTests.h"

#include <qix/main.h>

int main(int argc, char** argv)
{
    bench::registerTests(bench::testCount());
    return qix::runMain(argc, argv);
}
