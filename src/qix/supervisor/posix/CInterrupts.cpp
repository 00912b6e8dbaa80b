#include "supervisor/posix/CInterrupts.h"

#include <cstdio>

namespace qix
{

namespace
{

volatile std::sig_atomic_t g_signal = 0;

/// By a second one the process ends once the handler returns.
void note(int signal)
{
    if (g_signal != 0)
    {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
    g_signal = signal;
}

void handle(int signal, struct sigaction& before) noexcept
{
    struct sigaction action = {};
    action.sa_handler = &note;
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN)
    {
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

CInterrupts::CInterrupts() noexcept
{
    handle(SIGINT, m_interrupt);
    handle(SIGTERM, m_terminate);
}

CInterrupts::~CInterrupts()
{
    sigaction(SIGINT, &m_interrupt, nullptr);
    sigaction(SIGTERM, &m_terminate, nullptr);
}

int CInterrupts::signal() noexcept
{
    return g_signal;
}

void CInterrupts::endBySignal()
{
    if (g_signal != 0)
    {
        std::fflush(nullptr);
        std::signal(g_signal, SIG_DFL);
        std::raise(g_signal);
    }
}

} // namespace qix
