#include "text/withIndentedLines.h"

namespace qix
{

std::string withIndentedLines(std::string const& text)
{
    std::string indented;
    for (char const character : text.substr(0, text.find_last_not_of('\n') + 1))
    {
        indented += character;
        indented += character == '\n' ? "    " : "";
    }
    return indented;
}

} // namespace qix
