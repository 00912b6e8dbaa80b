#include <zel/debug.h>

#include <csignal>
#include <fstream>
#include <mutex>
#include <string>

#include <pthread.h>

namespace zel
{

namespace
{

bool isTraced()
{
    std::ifstream status("/proc/self/status");
    std::string name;
    while (status >> name)
    {
        if (name == "TracerPid:")
        {
            long tracer = 0;
            return (status >> tracer) && tracer != 0;
        }
    }
    return false;
}

void ignoreSignal(int) noexcept
{
}

/// Makes SIGTRAP harmless and deliverable to this thread while it lives. A debugger sees the
/// signal before any handler does; any other tracer passes it on, and its default action would
/// end the process.
class CHarmlessTrap
{
public:
    CHarmlessTrap() noexcept
    {
        struct sigaction ignore = {};
        ignore.sa_handler = &ignoreSignal;
        sigaction(SIGTRAP, &ignore, &m_oldAction);

        sigset_t trap;
        sigemptyset(&trap);
        sigaddset(&trap, SIGTRAP);
        pthread_sigmask(SIG_UNBLOCK, &trap, &m_oldMask);
    }

    ~CHarmlessTrap()
    {
        pthread_sigmask(SIG_SETMASK, &m_oldMask, nullptr);
        sigaction(SIGTRAP, &m_oldAction, nullptr);
    }

    CHarmlessTrap(CHarmlessTrap const&) = delete;
    CHarmlessTrap& operator=(CHarmlessTrap const&) = delete;

private:
    struct sigaction m_oldAction = {};
    sigset_t m_oldMask = {};
};

} // namespace

void debugBreak()
{
    if (!isTraced())
    {
        return;
    }
    // One thread at a time: the action of a signal belongs to the whole process.
    static std::mutex mutex;
    std::lock_guard<std::mutex> const lock(mutex);
    CHarmlessTrap const harmless;
    raise(SIGTRAP);
}

} // namespace zel
