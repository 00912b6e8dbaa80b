#pragma once

namespace qix
{

/// True when standard output is a terminal.
bool isOutputTerminal();

} // namespace qix
