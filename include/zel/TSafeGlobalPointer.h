#pragma once

#include <zel/CError.h>
#include <zel/CMutex.h>
#include <zel/CMutexLock.h>
#include <zel/CSafeGlobalGuard.h>
#include <zel/P.h>
#include <zel/thread.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <new>

namespace zel
{

/// A process-wide object that is made on first use, by any thread, and released at exit.
///
/// It is meant to be a local static of an accessor, whose initialisation the language guards:
///
///     P<CThing> CThing::get()
///     {
///         static TSafeGlobalPointer<CThing> g_pInstance(&globalInstanceGuard, &create);
///         return g_pInstance.get();
///     }
///
/// A creator that throws a std::exception is called again by the next access.
template <typename T>
class TSafeGlobalPointer
{
public:
    /// Returns the guard of the one global, for every instance of this class that stands for it.
    using GuardFunction = CSafeGlobalGuard& (*)();

    /// Makes the object.
    using CreateFunction = P<T> (*)();

    /// Makes the object under the global mutex, unless the guard says that another instance for
    /// the same global has started to: then it leaves the state as the storage had it.
    /// Throws what \p create throws.
#if defined(__GNUC__) && !defined(__clang__)
    // g++ holds that an object's storage is undefined before its constructor runs, and drops
    // earlier stores to it wherever it sees both. Kept out of sight, the constructor leaves them.
    __attribute__((noipa))
#else
    __attribute__((noinline))
#endif
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the state is left alone on purpose
    TSafeGlobalPointer(GuardFunction guard, CreateFunction create)
    {
        CMutexLock const lock(getGlobalMutex());
        CSafeGlobalGuard& started = guard();
        if (started.isStarted())
        {
            return;
        }
        started.setStarted();
        try
        {
            setState(notUsable);
            m_object = create();
            setState(constructed);
        }
        catch (std::exception const&)
        {
            guard().reset();
            setState(failed);
            throw;
        }
    }

    TSafeGlobalPointer(TSafeGlobalPointer const&) = delete;
    TSafeGlobalPointer& operator=(TSafeGlobalPointer const&) = delete;

    /// Marks the object unusable, so that a late access waits instead of touching it, and
    /// releases it.
    ~TSafeGlobalPointer()
    {
        setState(notUsable);
        // The word is read after the object's life has ended, which the compiler takes for
        // impossible: without this it drops the store.
        hidden(&m_state);
    }

    /// Places a global into \p storage, whose state word the constructor may have to leave alone.
    /// From g++ 16 on it is placing itself that makes the storage undefined, in the caller. Here
    /// the compiler loses sight of which storage it is; the global operator would not do that.
    static void* operator new(std::size_t, void* storage) noexcept
    {
        return hidden(storage);
    }

    /// Allocates a global as any other object. Throws std::bad_alloc.
    static void* operator new(std::size_t size)
    {
        return ::operator new(size);
    }

    /// Frees what the constructor of a placed global has left when it throws: nothing.
    static void operator delete(void*, void*) noexcept
    {
    }

    /// Frees an allocated global.
    static void operator delete(void* allocated) noexcept
    {
        ::operator delete(allocated);
    }

    /// The object. Waits while it is under construction, and for ever once it has been released.
    /// Throws CError when its construction has failed. Safe to call from any thread.
    P<T> get() const
    {
        for (;;)
        {
            std::uint64_t const state = __atomic_load_n(hidden(&m_state), __ATOMIC_SEQ_CST);
            if (state == constructed)
            {
                return m_object;
            }
            if (state == failed)
            {
                throw CError("Construction of static object has failed.", String(), -1, CProps(),
                             nullptr);
            }
            threadYield(true);
        }
    }

private:
    static constexpr std::uint64_t constructed = 0x47a592fe710a82bcULL;
    static constexpr std::uint64_t failed = 0xfe3493ad1f6783bdULL;
    static constexpr std::uint64_t notUsable = 0;

    /// The same address, of which the compiler no longer knows what it belongs to. It has to take
    /// the empty statement for code that reads and writes what is there.
    template <typename U>
    static U* hidden(U* address) noexcept
    {
        __asm__ __volatile__("" : "+r"(address) : : "memory");
        return address;
    }

    void setState(std::uint64_t state) noexcept
    {
        __atomic_store_n(hidden(&m_state), state, __ATOMIC_SEQ_CST);
    }

    P<T> m_object;
    // Not a std::atomic: its constructor would set the word from C++20 on.
    std::uint64_t m_state;
};

} // namespace zel
