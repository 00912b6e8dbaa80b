#pragma once

#include "program/RunOptions.h"

#include <string>

namespace qix
{

/// Does what a run with options does: enters the working directory, selects, and lists the tests
/// or runs them. Throws what the registered items throw outside their tests.
/// \param program  how the executable was called
/// \return the exit status
int runWithOptions(Arguments const& arguments, std::string const& program);

} // namespace qix
