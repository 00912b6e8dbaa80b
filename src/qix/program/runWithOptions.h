#pragma once

#include "options/RunOptions.h"

#include <string>

namespace qix
{

/// Does what a run with options does: enters the working directory, selects, and lists the tests
/// or runs them. Throws what the registered items throw outside their tests.
/// \param program  how the executable was called
/// \return the exit status
int runWithOptions(Arguments const& arguments, std::string const& program);

/// Does what CConsoleTestRunner::doMain() does. Where an earlier run with options has left its
/// history, the run is recorded in it, so that it is the last run for the next one.
int runWithoutOptions(Arguments const& arguments, std::string const& program);

} // namespace qix
