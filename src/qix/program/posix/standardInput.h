#pragma once

namespace qix
{

/// True when standard input has no more bytes: when it is closed, not readable, /dev/null, a file
/// at its end, or a pipe or connection without a writer. Does not wait and reads nothing.
bool hasStandardInputEnded();

} // namespace qix
