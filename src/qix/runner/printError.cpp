#include "runner/printError.h"

#include <cstdio>
#include <cstring>

namespace qix
{

namespace
{

/// Prints the text with a blank for each line end. Takes no memory: there may be none left.
void printInOneLine(char const* text)
{
    for (std::size_t length = std::strcspn(text, "\n"); text[length] != '\0';
         length = std::strcspn(text, "\n"))
    {
        std::fprintf(stderr, "%.*s ", static_cast<int>(length), text);
        text += length + 1;
    }
    std::fputs(text, stderr);
}

} // namespace

void printError(char const* message, char const* reason)
{
    std::fflush(stdout);
    std::fprintf(stderr, "Error: %s", message);
    printInOneLine(reason);
    std::fputc('\n', stderr);
}

} // namespace qix
