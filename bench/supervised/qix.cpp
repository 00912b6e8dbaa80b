#include "registerBusyTests.h"

#include <qix/main.h>

int main(int argc, char** argv)
{
    bench::registerBusyTests();
    return qix::runMain(argc, argv);
}
