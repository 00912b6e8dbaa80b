#include "program/posix/CFileSizeLimit.h"

namespace qix
{

namespace
{

void leaveItToTheWrite(int) noexcept
{
}

bool isDefault(struct sigaction const& action) noexcept
{
    return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_DFL;
}

} // namespace

CFileSizeLimit::CFileSizeLimit() noexcept
{
    sigaction(SIGXFSZ, nullptr, &m_oldAction);
    if (isDefault(m_oldAction))
    {
        // A handler, and not SIG_IGN, which programs that a test starts would inherit.
        struct sigaction action = {};
        action.sa_handler = &leaveItToTheWrite;
        action.sa_flags = SA_RESTART;
        sigaction(SIGXFSZ, &action, nullptr);
    }
}

CFileSizeLimit::~CFileSizeLimit()
{
    struct sigaction current = {};
    sigaction(SIGXFSZ, nullptr, &current);
    if (current.sa_handler == &leaveItToTheWrite && isDefault(m_oldAction))
    {
        sigaction(SIGXFSZ, &m_oldAction, nullptr);
    }
}

} // namespace qix
