// Five tests to choose from.
#include "suite.h"

using namespace suite;

int main(int argc, char** argv)
{
    return run(argc, argv,
               {leaf("net"), leaf("Network"), leaf("file system"), leaf("net.DB"), leaf("db_3")});
}
