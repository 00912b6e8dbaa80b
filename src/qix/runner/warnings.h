#pragma once

#include <string>

namespace qix
{

/// Lets the warnings of all runs be appended to a file beside being printed; empty for no file.
void setWarningsFile(std::string const& file);

/// Appends a line to that file. A warning that cannot be written is lost: it has been printed.
void noteWarning(std::string const& warning);

} // namespace qix
