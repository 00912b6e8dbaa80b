// The safe globals alone, which is little enough to be built with every optimisation.

#include "check.h"

int& check::failures()
{
    static int count = 0;
    return count;
}

int main()
{
    check::safeGlobals();
    check::safeGlobalAtExit(0);
}
