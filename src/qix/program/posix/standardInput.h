#pragma once

namespace qix
{

/// Tells, without waiting and without reading, whether standard input can give no more bytes:
/// whether it is closed, not readable, /dev/null, a file read to its end, or the end of a pipe
/// or connection that nobody writes to any more.
bool hasStandardInputEnded();

} // namespace qix
