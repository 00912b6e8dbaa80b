#pragma once

#include <zel/CBase.h>
#include <zel/P.h>

#include <mutex>

namespace zel
{

/// A shared mutex that the thread that holds it may lock again.
class ZEL_EXPORT CMutex : public CBase
{
public:
    CMutex();
    CMutex(CMutex const&) = delete;
    CMutex& operator=(CMutex const&) = delete;
    ~CMutex() override;

    /// Waits until no other thread holds the mutex. Throws std::system_error when the
    /// system cannot lock it.
    void lock();

    /// Undoes one lock() of this thread, which must hold the mutex.
    void unlock();

private:
    std::recursive_mutex m_mutex;
};

/// The one mutex of the process under which safe globals are constructed. It is recursive, since
/// the creator of one safe global may use another, and it outlives every static object.
ZEL_EXPORT P<CMutex> getGlobalMutex();

} // namespace zel
