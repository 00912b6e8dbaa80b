#pragma once

#include <functional>
#include <string>

namespace qix
{

/// What CConsoleTestRunner::doMain() does once it is in the working directory.
/// \param prepare  called when the tests are selected and about to run
bool selectAndRun(int argc, char const** argv, std::function<void()> const& prepare);

/// Throws std::logic_error for a null argument.
std::string toSelectionLine(char const* argument);

} // namespace qix
