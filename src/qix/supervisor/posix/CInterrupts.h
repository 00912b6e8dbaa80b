#pragma once

#include <csignal>

namespace qix
{

/// Takes notice of SIGINT and SIGTERM while it lives, instead of ending by them; by a second one,
/// whichever of both, the process ends at once. A signal that is ignored stays ignored. There is
/// never more than one object.
class CInterrupts
{
public:
    CInterrupts() noexcept;
    CInterrupts(CInterrupts const&) = delete;
    CInterrupts& operator=(CInterrupts const&) = delete;
    ~CInterrupts();

    /// The signal that has come, or 0.
    static int signal() noexcept;

    /// Ends the process by the signal that has come, if any has. What is printed is flushed.
    static void endBySignal();

private:
    struct sigaction m_interrupt;
    struct sigaction m_terminate;
};

} // namespace qix
