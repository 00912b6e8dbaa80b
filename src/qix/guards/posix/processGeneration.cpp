#include "guards/posix/processGeneration.h"

#include <new>

#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

namespace qix
{

namespace
{

using Generation = std::atomic<unsigned>;

Generation generationWithoutPage = 0;

/// The last number that this process or an ancestor has taken.
std::atomic<unsigned> lastTaken = 0;

void forgetGeneration() noexcept
{
    *detail::processGeneration = 0;
}

/// A page that the kernel fills with zeros in each child; null where it cannot.
void* makePageWipedOnFork() noexcept
{
    auto const size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const page =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED)
    {
        return nullptr;
    }
    if (madvise(page, size, MADV_WIPEONFORK) != 0)
    {
        munmap(page, size);
        return nullptr;
    }
    return page;
}

/// The page tells of every fork. The handler is called by fork() only, and is there for kernels
/// that do not know the advice, and for emulators that take it and do nothing.
struct ForksNoticedFromLoadOn
{
    ForksNoticedFromLoadOn() noexcept
    {
        if (void* const page = makePageWipedOnFork())
        {
            detail::processGeneration = new (page) Generation(0);
        }
        pthread_atfork(nullptr, nullptr, &forgetGeneration);
    }
};

ForksNoticedFromLoadOn const forksNoticedFromLoadOn;

} // namespace

namespace detail
{

std::atomic<unsigned>* processGeneration = &generationWithoutPage;

unsigned takeProcessGeneration() noexcept
{
    // Taken before it is shown, so that no child takes it, too.
    unsigned const next = ++lastTaken;
    unsigned number = 0;
    return processGeneration->compare_exchange_strong(number, next) ? next : number;
}

} // namespace detail

} // namespace qix
