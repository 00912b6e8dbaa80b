#pragma once

#include "supervisor/posix/CDescriptor.h"
#include "supervisor/posix/SharedState.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

namespace qix
{

/// What the processes of a slot print on one stream: read as soon as it comes, so that nobody waits
/// who prints, and taken in the portions of the messages in between.
class CCapturedStream
{
public:
    /// What is kept of that which one unit prints.
    static constexpr std::uint64_t bound = 4U << 20U;

    /// \param state  shared, outlives the stream
    explicit CCapturedStream(StreamState& state);

    int reader() const noexcept { return m_pipe.reader.get(); }

    /// Puts the pipe in the place of a standard stream. Called in the process that prints.
    void captureAs(int descriptor) const noexcept;

    /// False when something else has taken that place since. Called in the process that prints.
    bool isCapturedAs(int descriptor) const noexcept;

    /// How much has been printed by now. Called in the process that prints.
    std::uint64_t position() const noexcept;

    /// Reads what is there.
    void drain();

    /// Takes what lies between the last position and this one, and how much of it is not kept.
    std::string take(std::uint64_t position);

    /// How many bytes are kept.
    std::size_t kept() const noexcept { return m_kept; }

private:
    struct Chunk
    {
        std::uint64_t begin; ///< of what has not been taken
        std::string bytes;
        std::size_t used; ///< bytes that have been taken
    };

    bool readOnce();
    void keep(std::uint64_t begin, std::string_view bytes);

    StreamState& m_state;
    Pipe m_pipe;
    std::uint64_t m_inode;
    std::deque<Chunk> m_chunks;
    std::size_t m_kept = 0;
    std::uint64_t m_taken = 0;
};

} // namespace qix
