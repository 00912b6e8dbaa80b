// Groups, durations and tests that need a human, as something to select from.

#include <qix/test.h>

QIX_TEST(database, connects)
{
}

// It says that it takes from 5 seconds to 3 minutes, and runs when the selection has a "+".
QIX_TEST(database, vacuums, Long)
{
}

QIX_TEST(network, resolves)
{
}

QIX_TEST(netmask, parses)
{
}

// It needs a human, and runs when the selection has an "i" or an "I".
QIX_TEST(window, opens, Interactive)
{
}

QIX_TEST(window, closes)
{
}
