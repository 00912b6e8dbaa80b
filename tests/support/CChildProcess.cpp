#include "CChildProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <system_error>

#include <sys/wait.h>
#include <unistd.h>

namespace test
{

namespace
{

[[noreturn]] void doWork(std::function<int()> const& work)
{
    int status = 99;
    try
    {
        status = work();
    }
    catch (std::exception const& e)
    {
        std::fprintf(stderr, "child process: %s\n", e.what());
    }
    std::fflush(stdout);
    _exit(status);
}

} // namespace

CChildProcess::CChildProcess(std::function<int()> const& work)
{
    // The child would write again what waits in the buffer.
    std::fflush(stdout);
    m_id = fork();
    if (m_id == -1)
    {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (m_id == 0)
    {
        doWork(work);
    }
}

CChildProcess::~CChildProcess()
{
    if (!m_ended)
    {
        kill(m_id, SIGKILL);
        waitpid(m_id, nullptr, 0);
    }
}

int CChildProcess::wait()
{
    int status = 0;
    if (waitpid(m_id, &status, 0) == -1)
    {
        throw std::system_error(errno, std::generic_category(), "waitpid");
    }
    m_ended = WIFEXITED(status) || WIFSIGNALED(status);
    return status;
}

int CChildProcess::waitForExit()
{
    int const status = wait();
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace test
