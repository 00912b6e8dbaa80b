// What only a human can tell.

#include <qix/test.h>

#include <cstdio>
#include <iostream>
#include <string>

QIX_TEST(console, showsUmlauts, Interactive)
{
    std::printf("\nIs this an a with two dots above it: \u00e4 (y/n)? ");
    std::fflush(stdout);
    std::string answer;
    std::getline(std::cin, answer);
    QIX_CHECK(answer == "y");
}
