#pragma once

#include <array>
#include <cstddef>
#include <cstdio>
#include <string_view>

namespace qix
{

/// What a crash guard tells of the run: what is running, and its log. Kept without memory from the
/// heap and without locks, so that the handler of a signal can read it. All functions do nothing on
/// threads other than the one that was last given to noteRunsOfThisThread().

/// \return  whether this thread was the one already
bool noteRunsOfThisThread() noexcept;
void noteNoRuns() noexcept;

/// True on the thread whose runs are noted. For handlers of signals, too.
bool areRunsOfThisThreadNoted() noexcept;

void noteTestBegin(std::string_view name) noexcept;
void noteTestEnd() noexcept;

/// An item begins, none of whose checks has passed.
void noteItemBegin() noexcept;

/// \param log  may be null
void noteLogOpened(std::FILE* log) noexcept;
void noteLogClosed(std::FILE* log) noexcept;

/// Where the log's last line ends. A runner inside a test has a log of its own.
void noteLogText(std::FILE* log, std::string_view text) noexcept;

/// Forgets at its end what has begun in a run and was left open by an exception.
class CNotedRun
{
public:
    CNotedRun() noexcept;
    CNotedRun(CNotedRun const&) = delete;
    CNotedRun& operator=(CNotedRun const&) = delete;
    ~CNotedRun();

private:
    std::size_t m_depth;
};

/// While it lives, what begins is not run: its children are made.
class CNotedMaking
{
public:
    CNotedMaking() noexcept;
    CNotedMaking(CNotedMaking const&) = delete;
    CNotedMaking& operator=(CNotedMaking const&) = delete;
    ~CNotedMaking();

private:
    std::size_t m_depth;
    bool m_wasMaking;
};

/// What stands in the notes; for handlers of signals.
struct NotedRun
{
    static constexpr std::size_t mostBytes = 1024;

    std::array<char, mostBytes> path; ///< the names, each but the first behind a dot
    std::size_t size = 0;             ///< of the path; 0 while nothing is running
    bool isRunning = false;
    bool isMaking = false; ///< the children of what the path names are made
    bool isCut = false;    ///< the path is longer
    int log = -1;          ///< a descriptor; -1 for none
    bool isInLine = false; ///< the log's last line has no end

    std::string_view shownPath() const noexcept { return {path.data(), size}; }
};

void readNotedRun(NotedRun& run) noexcept;

} // namespace qix
