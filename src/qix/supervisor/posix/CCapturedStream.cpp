#include "supervisor/posix/CCapturedStream.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qix
{

namespace
{

constexpr std::size_t sizeOfPipe = 1U << 16U;

std::uint64_t waitingIn(int pipe) noexcept
{
    int bytes = 0;
    return ioctl(pipe, FIONREAD, &bytes) == 0 && bytes > 0 ? static_cast<std::uint64_t>(bytes) : 0;
}

std::uint64_t inodeOf(int descriptor) noexcept
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 ? status.st_ino : 0;
}

} // namespace

CCapturedStream::CCapturedStream(StreamState& state)
    : m_state(state), m_pipe(makePipe()), m_inode(inodeOf(m_pipe.writer.get()))
{
    fcntl(m_pipe.reader.get(), F_SETFL, O_NONBLOCK);
}

void CCapturedStream::captureAs(int descriptor) const noexcept
{
    dup2(m_pipe.writer.get(), descriptor);
}

/// Inodes of pipes are numbered anew for each.
bool CCapturedStream::isCapturedAs(int descriptor) const noexcept
{
    return inodeOf(descriptor) == m_inode;
}

std::uint64_t CCapturedStream::position() const noexcept
{
    for (;;)
    {
        std::uint32_t const before = m_state.version;
        std::uint64_t const read = m_state.read;
        std::uint64_t const waiting = waitingIn(m_pipe.writer.get());
        if (before % 2 == 0 && m_state.version == before)
        {
            return read + waiting;
        }
        sched_yield();
    }
}

void CCapturedStream::drain()
{
    while (readOnce())
    {
    }
}

/// Most times there is nothing.
bool CCapturedStream::readOnce()
{
    static std::array<char, sizeOfPipe> buffer;
    m_state.version.fetch_add(1);
    ssize_t const count = read(m_pipe.reader.get(), buffer.data(), buffer.size());
    std::uint64_t const begin = m_state.read;
    if (count > 0)
    {
        m_state.read = begin + static_cast<std::uint64_t>(count);
    }
    m_state.version.fetch_add(1);
    if (count <= 0)
    {
        return false;
    }
    keep(begin, {buffer.data(), static_cast<std::size_t>(count)});
    return true;
}

/// Looks at where the unit began after reading: what has been read belongs to that unit or to an
/// earlier one.
void CCapturedStream::keep(std::uint64_t begin, std::string_view bytes)
{
    std::uint64_t const end = m_state.beginOfUnit + bound;
    std::uint64_t const room = end > begin ? end - begin : 0;
    std::string_view const kept = bytes.substr(0, room);
    if (!kept.empty())
    {
        m_chunks.push_back({begin, std::string(kept), 0});
        m_kept += kept.size();
    }
}

std::string CCapturedStream::take(std::uint64_t position)
{
    std::string text;
    if (position <= m_taken)
    {
        return text;
    }
    drain();
    while (!m_chunks.empty() && m_chunks.front().begin < position)
    {
        Chunk& chunk = m_chunks.front();
        std::string_view const rest = std::string_view(chunk.bytes).substr(chunk.used);
        std::string_view const portion = rest.substr(0, position - chunk.begin);
        text += portion;
        chunk.begin += portion.size();
        chunk.used += portion.size();
        if (chunk.used == chunk.bytes.size())
        {
            m_chunks.pop_front();
        }
    }
    m_kept -= text.size();
    std::uint64_t const all = position - std::exchange(m_taken, position);
    if (text.size() < all)
    {
        text += "\n[" + std::to_string(all - text.size()) + " bytes of output are cut here]\n";
    }
    return text;
}

} // namespace qix
