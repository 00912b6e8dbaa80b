#pragma once

#include <zel/CBase.h>
#include <zel/CMutex.h>
#include <zel/P.h>

namespace zel
{

/// Holds a mutex while it lives, and keeps the mutex alive as long. It is destroyed on the thread
/// that made it.
class ZEL_EXPORT CMutexLock : public CBase
{
public:
    /// Takes a reference to \p mutex, which must not be null, and locks it. Throws what
    /// CMutex::lock() throws.
    explicit CMutexLock(P<CMutex> const& mutex);
    CMutexLock(CMutexLock const&) = delete;
    CMutexLock& operator=(CMutexLock const&) = delete;

    /// Unlocks the mutex and drops the reference.
    ~CMutexLock() override;

private:
    P<CMutex> m_mutex;
};

} // namespace zel
