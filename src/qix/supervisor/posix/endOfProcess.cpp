#include "supervisor/posix/endOfProcess.h"

#include <qix/detail/passedCheck.h>

#include "supervisor/posix/stackText.h"
#include "text/exceptionText.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

#include <execinfo.h>
#include <sys/wait.h>
#include <ucontext.h>
#include <unistd.h>

namespace qix
{

namespace
{

constexpr int const fatalSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGSYS, SIGTERM};

CrashState* g_state = nullptr;

void* faultOf(void const* context) noexcept
{
#if defined(__x86_64__)
    auto const* const state = static_cast<ucontext_t const*>(context);
    // The system keeps the address as a number. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<void*>(state->uc_mcontext.gregs[REG_RIP]);
#elif defined(__aarch64__)
    auto const* const state = static_cast<ucontext_t const*>(context);
    return reinterpret_cast<void*>(state->uc_mcontext.pc);
#else
    static_cast<void>(context);
    return nullptr;
#endif
}

/// What waits in the buffer of standard output is a part of what the test has printed. The buffer
/// is looked at as it is, since fflush() may wait for whom the signal has interrupted.
void writeOutputBuffer() noexcept
{
    char const* const begin = stdout->_IO_write_base;
    char const* const end = stdout->_IO_write_ptr;
    if (begin != nullptr && end > begin)
    {
        static_cast<void>(!write(STDOUT_FILENO, begin, static_cast<std::size_t>(end - begin)));
    }
}

/// backtrace() has been called before, so that it allocates nothing. The signal is raised again
/// with what it does by default, once this returns.
void noteSignal(int signal, siginfo_t* /*info*/, void* context)
{
    g_state->fault = faultOf(context);
    g_state->checkFile = detail::lastPassedCheck.file;
    g_state->checkLine = detail::lastPassedCheck.line;
    g_state->frameCount =
        static_cast<std::size_t>(backtrace(g_state->frames.data(), static_cast<int>(mostFrames)));
    writeOutputBuffer();
    raise(signal);
}

void noteExit()
{
    g_state->ending = Ending::Exit;
}

void noteQuickExit()
{
    g_state->ending = Ending::QuickExit;
}

[[noreturn]] void noteTerminate()
{
    g_state->ending = Ending::Terminate;
    if (std::current_exception() != nullptr)
    {
        std::string const text = currentExceptionText().substr(0, longestDetail - 1);
        std::copy(text.begin(), text.end(), g_state->detail.begin());
    }
    std::abort();
}

/// A stack that has overflowed leaves no room for the handler.
void makeSignalStack()
{
    static char stack[1U << 16U];
    stack_t description = {};
    description.ss_sp = stack;
    description.ss_size = sizeof stack;
    sigaltstack(&description, nullptr);
}

void handle(int signal)
{
    struct sigaction before = {};
    struct sigaction action = {};
    action.sa_sigaction = &noteSignal;
    action.sa_flags = static_cast<int>(SA_SIGINFO | SA_ONSTACK | SA_RESETHAND | SA_NODEFER);
    if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_DFL)
    {
        sigaction(signal, &action, nullptr);
    }
}

std::string describeSignal(int signal)
{
    char const* const name = sigabbrev_np(signal);
    char const* const text = sigdescr_np(signal);
    return name == nullptr ? "signal " + std::to_string(signal)
                           : "SIG" + std::string(name) + " (" + (text == nullptr ? "" : text) + ')';
}

/// The file is named by a literal, which is the same in all forked processes.
std::string describeLastCheck(CrashState const& state)
{
    char const* const file = state.checkFile;
    return file == nullptr ? ""
                           : "\n    the last check that passed is at " + std::string(file) + ':' +
                                 std::to_string(state.checkLine);
}

std::string describeExit(int status, Ending ending)
{
    char const* const function = ending == Ending::Exit        ? "exit"
                                 : ending == Ending::QuickExit ? "quick_exit"
                                                               : "_exit";
    return "the test ended its process by " + std::string(function) + '(' + std::to_string(status) +
           ')';
}

} // namespace

void noteEnding(CrashState& state)
{
    g_state = &state;
    forgetEnding(state);
    state.outerFrames =
        static_cast<std::size_t>(backtrace(state.frames.data(), static_cast<int>(mostFrames)));
    makeSignalStack();
    for (int const signal : fatalSignals)
    {
        handle(signal);
    }
    std::atexit(&noteExit);
    std::at_quick_exit(&noteQuickExit);
    std::set_terminate(&noteTerminate);
}

void forgetEnding(CrashState& state) noexcept
{
    state.ending = Ending::Unknown;
    state.frameCount = 0;
    state.fault = nullptr;
    state.checkFile = nullptr;
    state.detail[0] = '\0';
}

std::string describeEnding(int status, CrashState const& state)
{
    if (WIFEXITED(status))
    {
        return describeExit(WEXITSTATUS(status), state.ending);
    }
    std::string text = "the test's process was ended by " + describeSignal(WTERMSIG(status));
    if (state.ending == Ending::Terminate)
    {
        text += "\n    std::terminate() was called";
        text += state.detail[0] == '\0' ? "" : ": " + std::string(state.detail.data());
    }
    return text + describeLastCheck(state) + describeStack(state);
}

} // namespace qix
