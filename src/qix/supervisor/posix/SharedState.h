#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace qix
{

/// What different processes write often lies apart.
constexpr std::size_t cacheLine = 64;

/// What all processes of a crew share.
struct CrewState
{
    alignas(cacheLine) std::atomic<std::uint64_t> nextUnit{0}; ///< the first nobody has taken

    /// What the supervisor waits for, or comes to next.
    alignas(cacheLine) std::atomic<std::uint64_t> wantedUnit{0};

    /// The supervisor wants to be woken.
    alignas(cacheLine) std::atomic<std::uint32_t> isWaiting{0};
    std::atomic<std::uint32_t> isOverfull{0};    ///< nobody takes a unit but the one that is wanted
    std::atomic<std::uint32_t> isStopped{0};     ///< nobody takes a unit
    std::atomic<std::uint32_t> isSuspended{0};   ///< nobody runs until the supervisor goes on
    std::atomic<std::uint64_t> failedUnits{0};   ///< whose failures may not be told yet
    std::atomic<std::uint32_t> hasEndedBadly{0}; ///< a process, behind all of its units
};

/// How the process that runs tests has come to its end, as far as it could tell.
enum class Ending : std::uint32_t
{
    Unknown, ///< by a signal, or by _exit()
    Exit,
    QuickExit,
    Terminate
};

constexpr std::size_t mostFrames = 64;
constexpr std::size_t longestDetail = 2048;

/// What a process leaves when it crashes. Written by a signal handler.
struct CrashState
{
    std::atomic<Ending> ending{Ending::Unknown};
    std::atomic<std::size_t> frameCount{0};
    std::atomic<std::size_t> outerFrames{0}; ///< of those how many belong to whoever runs the tests
    std::atomic<void*> fault{nullptr};       ///< the instruction, when that is known
    std::atomic<char const*> checkFile{nullptr}; ///< of the last check that passed
    std::atomic<int> checkLine{0};
    std::array<void*, mostFrames> frames{};
    std::array<char, longestDetail> detail{}; ///< what was thrown and not caught
};

/// How much one stream has carried. The supervisor counts what it has read, and what it has not is
/// still in the pipe, so that both sides know how much has been written.
struct StreamState
{
    std::atomic<std::uint64_t> read{0};
    std::atomic<std::uint32_t> version{0};     ///< odd while the supervisor is reading
    std::atomic<std::uint64_t> beginOfUnit{0}; ///< how much had been written then
};

/// What the processes of one slot share with the supervisor: the keeper, and the one that runs
/// tests, of which there is never more than one at a time.
struct SlotState
{
    alignas(cacheLine) std::atomic<std::uint64_t> taken{0};   ///< bytes of messages
    alignas(cacheLine) std::atomic<std::uint64_t> written{0}; ///< bytes of messages
    std::atomic<std::uint32_t> isHungry{0};   ///< the supervisor has done all that it was told
    std::atomic<std::uint64_t> unit{0};       ///< the one that was taken last
    std::atomic<std::uint32_t> isUnitLeft{0}; ///< that one has not come to its end
    std::atomic<std::uint32_t> isInUnit{0};
    std::atomic<std::uint32_t> isEnding{0};  ///< the process has run all that it is going to run
    std::atomic<std::uint64_t> owed{0};      ///< bytes of a message that is being written in parts
    std::atomic<std::uint64_t> endOfTorn{0}; ///< of a message that nobody could complete
    std::atomic<std::int64_t> unitBegin{0};  ///< or that of the end; by slotTime()
    std::atomic<std::int64_t> suspended{0};  ///< nanoseconds for which all has been stopped
    std::atomic<std::uint32_t> isSuspended{0};
    StreamState out;
    StreamState err;
    CrashState crash;
};

} // namespace qix
