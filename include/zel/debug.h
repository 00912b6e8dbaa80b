#pragma once

#include <zel/export.h>

namespace zel
{

/// Stops in the debugger when one is attached; returns at once otherwise. A process that is only
/// traced, by strace say, goes on. Safe to call from any thread.
ZEL_EXPORT void debugBreak();

} // namespace zel
