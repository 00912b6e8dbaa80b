#pragma once

#include "options/RunOptions.h"

namespace qix
{

/// True when what is printed is to have colours: always or never when that is asked for;
/// otherwise the environment decides, by NO_COLOR and CLICOLOR_FORCE, and then whether standard
/// output is a terminal.
bool hasColors(RunOptions::Color color);

} // namespace qix
