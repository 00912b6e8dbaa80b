#include <zel/CMutex.h>

#include <new>

namespace zel
{

CMutex::CMutex() = default;

CMutex::~CMutex() = default;

void CMutex::lock()
{
    m_mutex.lock();
}

void CMutex::unlock()
{
    m_mutex.unlock();
}

P<CMutex> getGlobalMutex()
{
    // Built in static storage and never destroyed: static objects may need it until the last one
    // has gone.
    alignas(CMutex) static unsigned char storage[sizeof(CMutex)];
    static CMutex* const mutex = new (storage) CMutex();
    return P<CMutex>::share(mutex);
}

} // namespace zel
