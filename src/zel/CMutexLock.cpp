#include <zel/CMutexLock.h>

namespace zel
{

CMutexLock::CMutexLock(P<CMutex> const& mutex) : m_mutex(mutex)
{
    m_mutex->lock();
}

CMutexLock::~CMutexLock()
{
    m_mutex->unlock();
}

} // namespace zel
