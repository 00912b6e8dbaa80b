/// Runs a command and tells on standard error what it took: seconds that passed, seconds of the
/// processor, and kilobytes at its peak. A small program, since a process is born with the size of
/// its parent, and that counts for its peak.

#include <chrono>
#include <cstdio>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

double secondsOf(timeval const& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

} // namespace

int main(int argc, char** argv)
{
    auto const begin = std::chrono::steady_clock::now();
    pid_t const child = argc < 2 ? -1 : fork();
    if (child == 0)
    {
        execv(argv[1], argv + 1);
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    if (child < 0 || wait4(child, &status, 0, &usage) != child)
    {
        return 126;
    }
    std::chrono::duration<double> const passed = std::chrono::steady_clock::now() - begin;
    std::fprintf(stderr, "%.9f %.6f %ld\n", passed.count(),
                 secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime), usage.ru_maxrss);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 125;
}
