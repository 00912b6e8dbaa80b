#include "guards/posix/CCrashGuard.h"

#include <qix/detail/passedCheck.h>

#include "guards/posix/runNotes.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <string_view>

#include <pthread.h>
#include <unistd.h>

namespace qix
{

namespace
{

struct FatalSignal
{
    int number;
    std::string_view name;
    bool isOfInstruction; ///< the instruction that raises it raises it again when it is repeated
};

constexpr std::array<FatalSignal, 7> fatalSignals = {{{SIGSEGV, "SIGSEGV", true},
                                                      {SIGBUS, "SIGBUS", true},
                                                      {SIGFPE, "SIGFPE", true},
                                                      {SIGILL, "SIGILL", true},
                                                      {SIGABRT, "SIGABRT", false},
                                                      {SIGTRAP, "SIGTRAP", false},
                                                      {SIGSYS, "SIGSYS", false}}};

constexpr pid_t none = 0;
constexpr std::size_t stackSize = 65536;

std::atomic<pid_t> g_process = none;
std::atomic<bool> g_isTold = false;
std::atomic<pthread_t> g_teller = {};
std::atomic<bool> g_isTerminating = false;
std::terminate_handler g_nextTerminate = nullptr;
alignas(std::max_align_t) std::array<char, stackSize> g_stack;

/// A line made without memory from the heap. What does not fit is left out.
class CSignalSafeLine
{
public:
    void append(std::string_view text) noexcept
    {
        std::size_t const count = std::min(text.size(), m_bytes.size() - m_size);
        std::copy_n(text.data(), count, m_bytes.data() + m_size);
        m_size += count;
    }

    /// What would end the line, or confuse a terminal, is written as in an id.
    void appendInLine(std::string_view text) noexcept
    {
        constexpr std::string_view digits = "0123456789ABCDEF";
        for (char const character : text)
        {
            auto const byte = static_cast<unsigned char>(character);
            bool const isControl = byte < 0x20 || byte == 0x7F;
            char const code[] = {'%', digits[byte >> 4U], digits[byte & 0xFU]};
            append(isControl ? std::string_view(code, sizeof code)
                             : std::string_view(&character, 1));
        }
    }

    void appendNumber(int number) noexcept
    {
        std::array<char, 12> digits;
        std::size_t first = digits.size();
        for (int rest = number; rest > 0; rest /= 10)
        {
            digits[--first] = static_cast<char>('0' + rest % 10);
        }
        append({digits.data() + first, digits.size() - first});
    }

    std::string_view text() const noexcept { return {m_bytes.data(), m_size}; }

private:
    std::array<char, 8192> m_bytes;
    std::size_t m_size = 0;
};

/// One that is not known is not handled.
FatalSignal const& find(int number) noexcept
{
    return *std::find_if(fatalSignals.begin(), fatalSignals.end() - 1,
                         [number](FatalSignal const& signal) { return signal.number == number; });
}

void writeAll(int file, std::string_view text) noexcept
{
    while (!text.empty())
    {
        ssize_t const written = write(file, text.data(), text.size());
        if (written < 0 && errno != EINTR)
        {
            return;
        }
        text.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
}

void appendMaking(CSignalSafeLine& line, NotedRun const& run) noexcept
{
    line.append(" while the children of ");
    line.appendInLine(run.isRunning ? run.shownPath() : "the root");
    line.append(run.isCut ? "[...] were made" : " were made");
}

void appendRunning(CSignalSafeLine& line, NotedRun const& run) noexcept
{
    if (run.isMaking)
    {
        appendMaking(line, run);
        return;
    }
    if (!run.isRunning)
    {
        line.append(" while no test was running");
        return;
    }
    line.append(" while ");
    line.appendInLine(run.shownPath());
    line.append(run.isCut ? "[...] was running" : " was running");
}

void appendLastCheck(CSignalSafeLine& line) noexcept
{
    char const* const file = detail::lastPassedCheck.file;
    if (file != nullptr)
    {
        line.append("; the last check that passed is at ");
        line.appendInLine(file);
        line.append(":");
        line.appendNumber(detail::lastPassedCheck.line);
    }
}

void tell(FatalSignal const& signal) noexcept
{
    NotedRun run;
    readNotedRun(run);
    CSignalSafeLine line;
    line.append("Error: ");
    line.append(signal.name);
    line.append(g_isTerminating && signal.number == SIGABRT ? " by std::terminate" : "");
    line.append(areRunsOfThisThreadNoted() ? "" : " on another thread");
    appendRunning(line, run);
    appendLastCheck(line);
    line.append("\n");
    writeAll(STDERR_FILENO, line.text());
    if (run.log != -1)
    {
        writeAll(run.log, run.isInLine ? "\n" : "");
        writeAll(run.log, line.text());
    }
}

/// What crashes on several threads is told by one, and the others wait for the end.
void tellOnce(FatalSignal const& signal) noexcept
{
    if (!g_isTold.exchange(true))
    {
        g_teller = pthread_self();
        tell(signal);
        return;
    }
    while (pthread_equal(g_teller, pthread_self()) == 0)
    {
        pause();
    }
}

void setDefault(int signal) noexcept
{
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
}

void onFatalSignal(int number, siginfo_t* info, void* /*context*/)
{
    int const keptError = errno;
    FatalSignal const& signal = find(number);
    if (g_process == getpid())
    {
        tellOnce(signal);
    }
    setDefault(number);
    bool const comesAgain = signal.isOfInstruction && info->si_code > 0;
    if (!comesAgain)
    {
        // It is blocked until this returns.
        raise(number);
    }
    errno = keptError;
}

bool isDefault(struct sigaction const& action) noexcept
{
    return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == SIG_DFL;
}

bool isOurs(struct sigaction const& action) noexcept
{
    return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == &onFatalSignal;
}

void handleSignals() noexcept
{
    struct sigaction ours = {};
    ours.sa_sigaction = &onFatalSignal;
    ours.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&ours.sa_mask);
    for (FatalSignal const& signal : fatalSignals)
    {
        sigaddset(&ours.sa_mask, signal.number);
    }
    for (FatalSignal const& signal : fatalSignals)
    {
        struct sigaction there = {};
        if (sigaction(signal.number, nullptr, &there) == 0 && isDefault(there))
        {
            sigaction(signal.number, &ours, nullptr);
        }
    }
}

void provideStack() noexcept
{
    stack_t there = {};
    if (sigaltstack(nullptr, &there) == 0 && (there.ss_flags & SS_DISABLE) != 0)
    {
        stack_t stack = {};
        stack.ss_sp = g_stack.data();
        stack.ss_size = g_stack.size();
        sigaltstack(&stack, nullptr);
    }
}

void removeStack() noexcept
{
    stack_t there = {};
    if (sigaltstack(nullptr, &there) == 0 && there.ss_sp == g_stack.data())
    {
        stack_t disabled = {};
        disabled.ss_flags = SS_DISABLE;
        sigaltstack(&disabled, nullptr);
    }
}

[[noreturn]] void onTerminate()
{
    g_isTerminating = true;
    g_nextTerminate();
    std::abort();
}

} // namespace

CCrashGuard::CCrashGuard() noexcept
    : m_outerProcess(g_process.exchange(getpid())), m_isOutermost(!noteRunsOfThisThread())
{
    if (m_isOutermost)
    {
        provideStack();
        handleSignals();
        g_nextTerminate = std::set_terminate(&onTerminate);
    }
}

void CCrashGuard::leaveSignals() noexcept
{
    for (FatalSignal const& signal : fatalSignals)
    {
        struct sigaction there = {};
        if (sigaction(signal.number, nullptr, &there) == 0 && isOurs(there))
        {
            setDefault(signal.number);
        }
    }
}

CCrashGuard::~CCrashGuard()
{
    g_process = m_outerProcess;
    if (m_isOutermost)
    {
        if (std::get_terminate() == &onTerminate)
        {
            std::set_terminate(g_nextTerminate);
        }
        leaveSignals();
        removeStack();
        noteNoRuns();
    }
}

} // namespace qix
