#include "guards/posix/runNotes.h"

#include <qix/detail/passedCheck.h>

#include <algorithm>
#include <atomic>
#include <cstdint>

#include <pthread.h>

namespace qix
{

namespace detail
{

__thread PassedCheck lastPassedCheck = {nullptr, 0};

} // namespace detail

namespace
{

constexpr std::size_t deepest = 256;

std::atomic<bool> g_isNoting = false;
std::atomic<pthread_t> g_thread = {};

// Written by one thread, and read by the handler of a signal on any.
std::array<std::atomic<char>, NotedRun::mostBytes> g_path;
std::array<std::atomic<std::uint16_t>, deepest> g_ends; ///< of the names in the path
std::atomic<std::size_t> g_depth = 0;
std::atomic<bool> g_isMaking = false;

std::atomic<std::FILE*> g_log = nullptr;
std::atomic<int> g_logDescriptor = -1;
std::atomic<bool> g_isLogInLine = false;

std::size_t endOfPath(std::size_t depth) noexcept
{
    std::size_t const kept = std::min(depth, deepest);
    return kept == 0 ? 0 : g_ends[kept - 1].load(std::memory_order_relaxed);
}

/// Adds as much of the text as there is room for.
std::size_t appendToPath(std::size_t end, std::string_view text) noexcept
{
    std::size_t const count = std::min(text.size(), g_path.size() - end);
    for (std::size_t i = 0; i < count; ++i)
    {
        g_path[end + i].store(text[i], std::memory_order_relaxed);
    }
    return end + count;
}

void setDepth(std::size_t depth) noexcept
{
    g_depth.store(depth, std::memory_order_release);
}

} // namespace

bool noteRunsOfThisThread() noexcept
{
    bool const was = areRunsOfThisThreadNoted();
    g_thread = pthread_self();
    g_isNoting = true;
    return was;
}

void noteNoRuns() noexcept
{
    g_isNoting = false;
}

bool areRunsOfThisThreadNoted() noexcept
{
    return g_isNoting.load(std::memory_order_relaxed) &&
           pthread_equal(g_thread.load(std::memory_order_relaxed), pthread_self()) != 0;
}

void noteTestBegin(std::string_view name) noexcept
{
    if (!areRunsOfThisThreadNoted())
    {
        return;
    }
    std::size_t const depth = g_depth.load(std::memory_order_relaxed);
    if (depth < deepest)
    {
        std::size_t end = endOfPath(depth);
        end = depth == 0 ? end : appendToPath(end, ".");
        end = appendToPath(end, name);
        g_ends[depth].store(static_cast<std::uint16_t>(end), std::memory_order_relaxed);
    }
    setDepth(depth + 1);
}

void noteTestEnd() noexcept
{
    std::size_t const depth = g_depth.load(std::memory_order_relaxed);
    if (depth > 0 && areRunsOfThisThreadNoted())
    {
        setDepth(depth - 1);
    }
}

void noteItemBegin() noexcept
{
    detail::lastPassedCheck.file = nullptr;
}

void noteLogOpened(std::FILE* log) noexcept
{
    if (log != nullptr && g_log.load() == nullptr && areRunsOfThisThreadNoted())
    {
        g_isLogInLine = false;
        g_log = log;
        g_logDescriptor = fileno(log);
    }
}

void noteLogClosed(std::FILE* log) noexcept
{
    if (g_log.load() == log)
    {
        g_logDescriptor = -1;
        g_log = nullptr;
    }
}

void noteLogText(std::FILE* log, std::string_view text) noexcept
{
    if (!text.empty() && log == g_log.load(std::memory_order_relaxed))
    {
        g_isLogInLine.store(text.back() != '\n', std::memory_order_relaxed);
    }
}

CNotedRun::CNotedRun() noexcept : m_depth(g_depth.load(std::memory_order_relaxed))
{
}

CNotedRun::~CNotedRun()
{
    if (areRunsOfThisThreadNoted())
    {
        setDepth(m_depth);
    }
}

CNotedMaking::CNotedMaking() noexcept
    : m_depth(g_depth.load(std::memory_order_relaxed)), m_wasMaking(g_isMaking)
{
    if (areRunsOfThisThreadNoted())
    {
        g_isMaking = true;
    }
}

CNotedMaking::~CNotedMaking()
{
    if (areRunsOfThisThreadNoted())
    {
        g_isMaking = m_wasMaking;
        setDepth(m_depth);
    }
}

void readNotedRun(NotedRun& run) noexcept
{
    std::size_t const depth = g_depth.load(std::memory_order_acquire);
    run.isRunning = depth > 0;
    run.isMaking = g_isMaking;
    run.size = endOfPath(depth);
    run.isCut = run.size == g_path.size() || depth > deepest;
    for (std::size_t i = 0; i < run.size; ++i)
    {
        run.path[i] = g_path[i].load(std::memory_order_relaxed);
    }
    run.log = g_logDescriptor;
    run.isInLine = g_isLogInLine;
}

} // namespace qix
