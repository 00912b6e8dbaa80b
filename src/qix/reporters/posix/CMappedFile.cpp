#include "reporters/posix/CMappedFile.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace qix
{

namespace
{

/// A file takes the place of what has its name, and not of a link to it.
std::string withoutLinks(std::string const& file)
{
    std::error_code error;
    std::filesystem::path const path = std::filesystem::weakly_canonical(file, error);
    return error ? file : path.string();
}

bool isOtherThanFile(std::string const& name)
{
    std::error_code error;
    std::filesystem::file_status const status = std::filesystem::status(name, error);
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

} // namespace

CMappedFile::CMappedFile(std::string const& file) : m_name(withoutLinks(file))
{
}

CMappedFile::~CMappedFile()
{
    release();
}

bool CMappedFile::replace(std::string const& bytes)
{
    if (isOtherThanFile(m_name))
    {
        return fail("it is there already, and no file");
    }
    std::string const next = m_name + ".new";
    release();
    if (!makeFile(next, bytes) || std::rename(next.c_str(), m_name.c_str()) != 0)
    {
        int const error = errno;
        static_cast<void>(unlink(next.c_str()));
        return fail(std::strerror(error));
    }
    return true;
}

bool CMappedFile::makeFile(std::string const& file, std::string const& bytes)
{
    m_file = open(file.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    // What is in the memory has its place on the disk by this: a store cannot fail.
    if (m_file == -1 || !writeAll(0, bytes))
    {
        return false;
    }
    m_size = bytes.size();
    void* const memory = mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_SHARED, m_file, 0);
    m_memory = memory == MAP_FAILED ? nullptr : static_cast<char*>(memory);
    return true;
}

void CMappedFile::write(std::size_t offset, std::string_view bytes)
{
    if (m_memory != nullptr)
    {
        std::copy(bytes.begin(), bytes.end(), m_memory + offset);
    }
    else if (m_error.empty() && !writeAll(offset, bytes))
    {
        fail(std::strerror(errno));
    }
}

void CMappedFile::set(std::size_t offset, char byte)
{
    if (m_memory == nullptr)
    {
        write(offset, std::string_view(&byte, 1));
        return;
    }
    // Whatever ends the process next, all stores in front of this one are in the file.
    std::atomic_signal_fence(std::memory_order_seq_cst);
    *static_cast<char volatile*>(m_memory + offset) = byte;
    std::atomic_signal_fence(std::memory_order_seq_cst);
}

std::string CMappedFile::read() const
{
    if (m_memory != nullptr)
    {
        return std::string(m_memory, m_size);
    }
    std::string bytes(m_size, '\0');
    std::size_t position = 0;
    while (position < m_size)
    {
        ssize_t const count =
            pread(m_file, &bytes[position], m_size - position, static_cast<off_t>(position));
        if (count <= 0)
        {
            break;
        }
        position += static_cast<std::size_t>(count);
    }
    return bytes;
}

bool CMappedFile::writeAll(std::size_t offset, std::string_view bytes) const
{
    while (!bytes.empty())
    {
        ssize_t const written =
            pwrite(m_file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno != EINTR)
        {
            return false;
        }
        std::size_t const count = written < 0 ? 0 : static_cast<std::size_t>(written);
        bytes.remove_prefix(count);
        offset += count;
    }
    return true;
}

bool CMappedFile::fail(char const* why)
{
    m_error = why;
    return false;
}

void CMappedFile::release() noexcept
{
    if (m_memory != nullptr)
    {
        munmap(m_memory, m_size);
        m_memory = nullptr;
    }
    if (m_file != -1)
    {
        close(m_file);
        m_file = -1;
    }
}

} // namespace qix
