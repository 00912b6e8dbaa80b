#include <qix/main.h>

int main(int argc, char** argv)
{
    return qix::runMain(argc, argv);
}
