#pragma once

#include <zel/export.h>

namespace zel
{

/// Records whether the construction of one safe global has been started. It outlives the global,
/// so that a construction that failed can be tried again. Guarded by the global mutex.
class ZEL_EXPORT CSafeGlobalGuard
{
public:
    /// True from setStarted() to reset().
    bool isStarted() const noexcept { return m_started != 0; }

    /// The construction begins.
    void setStarted() noexcept { m_started = 1; }

    /// The construction has failed and may begin again.
    void reset() noexcept { m_started = 0; }

private:
    unsigned char m_started = 0;
};

} // namespace zel
