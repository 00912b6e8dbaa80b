#include "guards/posix/CForkLock.h"

#include <utility>

#include <pthread.h>

namespace qix
{

namespace
{

CForkLock* first = nullptr;

} // namespace

CForkLock::CForkLock(std::mutex& mutex) noexcept
    : m_mutex(mutex), m_next(std::exchange(first, this))
{
    if (m_next == nullptr)
    {
        pthread_atfork(&lockAll, &unlockAll, &unlockAll);
    }
}

void CForkLock::lockAll() noexcept
{
    for (CForkLock* lock = first; lock != nullptr; lock = lock->m_next)
    {
        lock->m_mutex.lock();
    }
}

void CForkLock::unlockAll() noexcept
{
    for (CForkLock* lock = first; lock != nullptr; lock = lock->m_next)
    {
        lock->m_mutex.unlock();
    }
}

} // namespace qix
