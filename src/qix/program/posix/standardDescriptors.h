#pragma once

namespace qix
{

/// Occupies those of the descriptors 0, 1 and 2 that are closed. The next file that is opened, the
/// log, would take the number otherwise, and get what is printed on standard output. Reading from
/// an occupied descriptor and writing to it fail as they do on a closed one.
void occupyClosedStandardDescriptors() noexcept;

} // namespace qix
