#include "program/posix/CDivertedOutput.h"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace qix
{

CDivertedOutput::CDivertedOutput()
{
    std::fflush(stdout);
    m_output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    static_cast<void>(dup2(STDERR_FILENO, STDOUT_FILENO));
}

CDivertedOutput::~CDivertedOutput()
{
    std::fflush(stdout);
    if (m_output != -1)
    {
        static_cast<void>(dup2(m_output, STDOUT_FILENO));
        close(m_output);
    }
}

} // namespace qix
