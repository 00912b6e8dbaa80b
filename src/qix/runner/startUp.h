#pragma once

#include <string>

namespace qix
{

/// What CConsoleTestRunner::doMain() does once it is in the working directory.
bool selectAndRun(int argc, char const** argv);

/// Throws std::logic_error for a null argument.
std::string toSelectionLine(char const* argument);

} // namespace qix
