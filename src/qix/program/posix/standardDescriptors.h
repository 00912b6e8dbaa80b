#pragma once

namespace qix
{

/// Reserves those of the descriptors 0, 1 and 2 that are closed, so that the next file to be
/// opened, the log, does not become standard output. Reads and writes of a reserved descriptor
/// fail, as they do for a closed one.
void reserveClosedStandardDescriptors() noexcept;

} // namespace qix
