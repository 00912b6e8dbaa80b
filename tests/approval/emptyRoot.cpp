// No tests at all.
#include "suite.h"

int main(int argc, char** argv)
{
    return suite::run(argc, argv, {});
}
