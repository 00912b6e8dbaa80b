#pragma once

#include <zel/export.h>

namespace zel
{

/// Lets other threads go first. Safe to call from any thread.
/// \param giveAway  true gives the processor away for about a millisecond, so that a thread of
///                  any priority can run; false only goes to the end of the line of ready threads
ZEL_EXPORT void threadYield(bool giveAway);

} // namespace zel
