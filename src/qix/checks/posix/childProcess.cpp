#include "checks/posix/childProcess.h"

#include <zel/CError.h>

#include "text/exceptionText.h"
#include "text/forcedUnwind.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qix
{

namespace
{

[[noreturn]] void throwError(char const* what)
{
    throw zel::CError(zel::String("A statement cannot be run in a process of its own: ") + what +
                      ": " + std::strerror(errno));
}

/// An unlinked temporary file: unlike a pipe, it takes any amount without a reader.
class CMemoryFile
{
public:
    CMemoryFile() : m_descriptor(memfd_create("qix", MFD_CLOEXEC))
    {
        if (m_descriptor < 0)
        {
            throwError("memfd_create");
        }
    }
    ~CMemoryFile() { close(m_descriptor); }
    CMemoryFile(CMemoryFile const&) = delete;
    CMemoryFile& operator=(CMemoryFile const&) = delete;

    int get() const noexcept { return m_descriptor; }

    std::string read() const
    {
        constexpr std::size_t step = 4096;
        std::string text;
        ssize_t size = 0;
        do
        {
            std::size_t const begin = text.size();
            text.resize(begin + step);
            size = pread(m_descriptor, &text[begin], step, static_cast<off_t>(begin));
            text.resize(begin + (size > 0 ? static_cast<std::size_t>(size) : 0));
        } while (size > 0);
        return text;
    }

private:
    int m_descriptor;
};

/// An on_exit() handler that ends the child before those that the parent has registered: the child
/// must not destroy static objects of the parent.
void leaveWithoutInherited(int status, void* /*nothing*/)
{
    std::fflush(stderr);
    _exit(status);
}

void divertStreams(int errors)
{
    int const nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nowhere, STDIN_FILENO);
    dup2(nowhere, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
}

/// Handlers of sanitizers and crash reporters would hide by which signal the child ends.
void forgetSignalHandlers()
{
    for (int const number : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGSYS, SIGTRAP})
    {
        std::signal(number, SIG_DFL);
    }
}

void forbidCoreDumps()
{
    rlimit const none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

void tell(int report, std::string const& text)
{
    std::size_t begin = 0;
    while (begin < text.size())
    {
        ssize_t const size = write(report, text.data() + begin, text.size() - begin);
        if (size <= 0)
        {
            return;
        }
        begin += static_cast<std::size_t>(size);
    }
}

QIX_CATCHES_FORCED_UNWIND void callAndTell(detail::CFunctionRef statement, int report)
{
    try
    {
        statement();
        tell(report, "R");
    }
    catch (abi::__forced_unwind const&)
    {
        // The only thread of the child is being cancelled, which ends the process.
        throw;
    }
    catch (...)
    {
        tell(report, "T" + currentExceptionText());
    }
}

[[noreturn]] void beChild(detail::CFunctionRef statement, int errors, int report)
{
    divertStreams(errors);
    forgetSignalHandlers();
    forbidCoreDumps();
    on_exit(&leaveWithoutInherited, nullptr);
    callAndTell(statement, report);
    std::fflush(stderr);
    _exit(EXIT_SUCCESS);
}

ChildEnd waitForEnd(pid_t child)
{
    int status = 0;
    pid_t ended = 0;
    do
    {
        ended = waitpid(child, &status, 0);
    } while (ended < 0 && errno == EINTR);
    if (ended < 0)
    {
        return {ChildEnd::Unknown, 0, "", ""};
    }
    return WIFSIGNALED(status) ? ChildEnd{ChildEnd::Killed, WTERMSIG(status), "", ""}
                               : ChildEnd{ChildEnd::Exited, WEXITSTATUS(status), "", ""};
}

} // namespace

ChildEnd callInChildProcess(detail::CFunctionRef statement)
{
    CMemoryFile const errors;
    CMemoryFile const report;
    pid_t const child = fork();
    if (child < 0)
    {
        throwError("fork");
    }
    if (child == 0)
    {
        beChild(statement, errors.get(), report.get());
    }
    ChildEnd end = waitForEnd(child);
    std::string const told = report.read();
    if (!told.empty())
    {
        end.kind = told[0] == 'R' ? ChildEnd::Returned : ChildEnd::Threw;
        end.thrown = told.substr(1);
    }
    end.written = errors.read();
    return end;
}

} // namespace qix
