#pragma once

#include <mutex>

namespace qix
{

/// Holds a mutex during each fork(), and releases it in both processes: in the child the mutex is
/// free and what it guards is whole, whichever thread was using it. Both objects are static and
/// live as long as the process. Nobody holds two such mutexes at a time.
///
/// _Fork() and the bare system call go round it, as they go round the memory's own locks: what
/// they fork from several threads may do no more than a signal handler.
class CForkLock
{
public:
    explicit CForkLock(std::mutex& mutex) noexcept;
    CForkLock(CForkLock const&) = delete;
    CForkLock& operator=(CForkLock const&) = delete;

private:
    static void lockAll() noexcept;
    static void unlockAll() noexcept;

    std::mutex& m_mutex;
    CForkLock* m_next;
};

} // namespace qix
