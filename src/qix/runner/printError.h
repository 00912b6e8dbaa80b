#pragma once

namespace qix
{

/// Prints a line on standard error, behind what has been printed on standard output: "Error: ", the
/// message, and the reason with a blank for each line end.
void printError(char const* message, char const* reason = "");

} // namespace qix
