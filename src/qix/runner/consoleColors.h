#pragma once

namespace qix
{

/// What is printed in front of and behind what has a colour; empty without colours.
struct ConsoleColors
{
    char const* passed;
    char const* failed;
    char const* none;
};

constexpr ConsoleColors withoutColors = {"", "", ""};
constexpr ConsoleColors withColors = {"\033[32m", "\033[31m", "\033[0m"};

/// Those of all runners. It is no field of a runner, since the fields of that class are fixed.
extern ConsoleColors consoleColors;

} // namespace qix
