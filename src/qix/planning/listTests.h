#pragma once

#include "planning/CTestSelection.h"

#include <string>

namespace qix
{

/// Prints the ids of the tests that are selected, one in each line.
void listTests(CTestSelection const& selection);

/// Prints one JSON document with all that is known of the tests that are selected.
/// \param program  the name of the executable
void listTestsAsJson(CTestSelection const& selection, std::string const& program);

} // namespace qix
