#include "supervisor/posix/CStopSignal.h"

namespace qix
{

namespace
{

volatile std::sig_atomic_t g_hasCome = 0;

void note(int /*signal*/)
{
    g_hasCome = 1;
}

void noteWhenItComes() noexcept
{
    struct sigaction action = {};
    action.sa_handler = &note;
    sigaction(SIGTSTP, &action, nullptr);
}

} // namespace

CStopSignal::CStopSignal() noexcept
{
    g_hasCome = 0;
    sigaction(SIGTSTP, nullptr, &m_before);
    if (m_before.sa_handler != SIG_IGN)
    {
        noteWhenItComes();
    }
}

CStopSignal::~CStopSignal()
{
    sigaction(SIGTSTP, &m_before, nullptr);
}

bool CStopSignal::hasCome() noexcept
{
    return g_hasCome != 0;
}

void CStopSignal::stop() noexcept
{
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    sigaction(SIGTSTP, &byDefault, nullptr);
    g_hasCome = 0;
    std::raise(SIGTSTP);
    noteWhenItComes();
}

} // namespace qix
