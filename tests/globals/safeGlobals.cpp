// What optimisers must leave of a safe global: its state word is written and read outside the
// life of the object.

#include <zel/TSafeGlobalPointer.h>

#include "check.h"

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <thread>
#include <vector>

#include <unistd.h>

namespace
{

using check::that;
using zel::P;

constexpr std::uint64_t constructed = 0x47a592fe710a82bcULL;
constexpr std::uint64_t failed = 0xfe3493ad1f6783bdULL;

class Thing : public zel::CBase
{
};

using Global = zel::TSafeGlobalPointer<Thing>;

zel::CSafeGlobalGuard& guard()
{
    static zel::CSafeGlobalGuard instance;
    return instance;
}

std::atomic<int> g_creations{0};
bool g_fails = false;

P<Thing> create()
{
    ++g_creations;
    if (g_fails)
    {
        throw std::runtime_error("not now");
    }
    return zel::newObj<Thing>();
}

/// What the memory holds, whatever the compiler thinks that it knows about it.
__attribute__((noinline)) std::uint64_t stateIn(void const* global)
{
    __asm__ __volatile__("" : "+r"(global) : : "memory");
    std::uint64_t state = 0;
    std::memcpy(&state, static_cast<char const*>(global) + 8, sizeof(state));
    return state;
}

/// Makes a global where another has left its state. Everything is inlined that may be: in one
/// function, an optimiser sees that the store stands before the object's life.
__attribute__((noinline, flatten)) Global* makeOver(void* storage, std::uint64_t state)
{
    std::memcpy(static_cast<char*>(storage) + 8, &state, sizeof(state));
    return new (storage) Global(&guard, &create);
}

/// Destroys a global; inlined too, so that its last store stands at the end of the object's life.
__attribute__((noinline, flatten)) void destroy(Global* global)
{
    global->~Global();
}

void untouchedStateStays()
{
    for (std::uint64_t const before : {std::uint64_t{5}, failed, constructed})
    {
        alignas(Global) unsigned char storage[sizeof(Global)] = {};
        guard().setStarted();
        Global* const global = makeOver(storage, before);
        that(stateIn(storage) == before, "a constructor that is not the first leaves the state");
        that(g_creations == 0, "a constructor that is not the first makes nothing");
        destroy(global);
        guard().reset();
    }
}

void destructorStoresZero()
{
    alignas(Global) unsigned char storage[sizeof(Global)] = {};
    Global* const global = makeOver(storage, 1);
    that(stateIn(storage) == constructed, "the constructor has set the state");
    P<Thing> const object = global->get();
    destroy(global);
    that(stateIn(storage) == 0, "the destructor has set the state to 0");
    that(object->getRefCount() == 1, "the destructor has released the object");
    Thing* left = nullptr;
    std::memcpy(&left, storage, sizeof(left));
    that(left == object.get(), "the destructor leaves the pointer");
    guard().reset();
}

void failureIsStored()
{
    alignas(Global) unsigned char storage[sizeof(Global)] = {};
    g_fails = true;
    bool thrown = false;
    try
    {
        new (storage) Global(&guard, &create);
    }
    catch (std::runtime_error const&)
    {
        thrown = true;
    }
    g_fails = false;
    that(thrown, "the creator's error reaches the caller");
    that(stateIn(storage) == failed, "the failure is in the state");
    that(!guard().isStarted(), "the guard is reset");
}

void failedStateThrows()
{
    alignas(Global) unsigned char storage[sizeof(Global)] = {};
    guard().setStarted();
    Global* const global = makeOver(storage, failed);
    bool thrown = false;
    try
    {
        global->get();
    }
    catch (zel::CError const& e)
    {
        thrown = e.getMessage() == "Construction of static object has failed.";
    }
    that(thrown, "an access to a failed global throws");
    destroy(global);
    guard().reset();
}

/// An access that sees the whole of the object's life, and the store before it.
__attribute__((noinline, flatten)) bool throwsWhereFailed(void* storage)
{
    std::memcpy(static_cast<char*>(storage) + 8, &failed, sizeof(failed));
    Global* const global = new (storage) Global(&guard, &create);
    bool thrown = false;
    try
    {
        global->get();
    }
    catch (zel::CError const&)
    {
        thrown = true;
    }
    global->~Global();
    return thrown;
}

void failedStateThrowsInOneFunction()
{
    alignas(Global) unsigned char storage[sizeof(Global)] = {};
    guard().setStarted();
    that(throwsWhereFailed(storage), "an access throws where the object's whole life is seen");
    that(stateIn(storage) == 0, "the destructor has set that state to 0");
    guard().reset();
}

void allocatedGlobalWorks()
{
    auto const global = std::make_unique<Global>(&guard, &create);
    that(global->get() != nullptr, "an allocated global makes its object");
    guard().reset();
}

Global* g_static = nullptr;

P<Thing> get()
{
    static Global g_pInstance(&guard, &create);
    g_static = &g_pInstance;
    return g_pInstance.get();
}

void creatorIsTriedAgain()
{
    g_creations = 0;
    g_fails = true;
    for (int i = 0; i < 2; ++i)
    {
        bool thrown = false;
        try
        {
            get();
        }
        catch (std::runtime_error const&)
        {
            thrown = true;
        }
        that(thrown, "each failure reaches the caller");
    }
    g_fails = false;
    that(g_creations == 2, "each access tries again");
}

void threadsGetOneObject()
{
    g_creations = 0;
    std::atomic<bool> go{false};
    std::vector<P<Thing>> seen(8);
    std::vector<std::thread> threads;
    for (P<Thing>& mine : seen)
    {
        threads.emplace_back(
            [&go, &mine]
            {
                while (!go)
                {
                    std::this_thread::yield();
                }
                mine = get();
            });
    }
    go = true;
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    that(g_creations == 1, "one thread makes the object");
    for (P<Thing> const& object : seen)
    {
        that(object != nullptr && object == seen[0], "all threads get the same object");
    }
}

int g_status = 0;

void checkStateAfterDestruction()
{
    that(stateIn(g_static) == 0, "the state is 0 after the destructor at exit");
    std::fflush(stdout);
    _exit(check::failures() == 0 ? g_status : 1);
}

/// Registered before the global is made, so that it runs after the global's destructor.
bool const checksAtExit = std::atexit(&checkStateAfterDestruction) == 0;

} // namespace

void check::safeGlobals()
{
    untouchedStateStays();
    destructorStoresZero();
    failureIsStored();
    failedStateThrows();
    failedStateThrowsInOneFunction();
    allocatedGlobalWorks();
    creatorIsTriedAgain();
    threadsGetOneObject();
}

void check::safeGlobalAtExit(int status)
{
    that(checksAtExit, "the check at exit is registered");
    that(stateIn(g_static) == constructed, "the state is set until the process ends");
    g_status = status;
}
