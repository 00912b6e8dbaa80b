#include "program/colors.h"

#include "program/posix/terminal.h"

#include <cstdlib>
#include <string_view>

namespace qix
{

namespace
{

std::string_view variable(char const* name)
{
    char const* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

bool isForced()
{
    std::string_view const value = variable("CLICOLOR_FORCE");
    return !value.empty() && value != "0";
}

} // namespace

bool hasColors(RunOptions::Color color)
{
    switch (color)
    {
    case RunOptions::Color::Always:
        return true;
    case RunOptions::Color::Never:
        return false;
    case RunOptions::Color::Auto:
        break;
    }
    return variable("NO_COLOR").empty() && (isForced() || isOutputTerminal());
}

} // namespace qix
