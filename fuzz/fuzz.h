#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

/// What libFuzzer, or the replay of a corpus, calls with each input.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace fuzz
{

/// Stops the process when something does not hold: that is what a fuzzer counts as a finding.
inline void require(bool holds, std::string const& what)
{
    if (!holds)
    {
        dprintf(STDERR_FILENO, "does not hold: %s\n", what.c_str());
        std::abort();
    }
}

/// Tells two texts apart as a finding, with both of them shown.
inline void requireEqual(std::string const& seen, std::string const& expected,
                         std::string const& what)
{
    require(seen == expected, what + "\n--- seen:\n" + seen + "\n--- expected:\n" + expected);
}

/// The bytes of one input, taken from front to back. At the end numbers are 0 and texts empty.
class Input
{
public:
    Input(std::uint8_t const* data, std::size_t size)
        : m_bytes(size == 0 ? std::string() : std::string(data, data + size))
    {
    }

    bool isAtEnd() const { return m_position == m_bytes.size(); }

    std::uint8_t byte()
    {
        return isAtEnd() ? std::uint8_t(0) : static_cast<std::uint8_t>(m_bytes[m_position++]);
    }

    /// The bytes up to the next line feed, which is dropped.
    std::string line()
    {
        std::size_t const end = std::min(m_bytes.find('\n', m_position), m_bytes.size());
        std::string const text = m_bytes.substr(m_position, end - m_position);
        m_position = std::min(end + 1, m_bytes.size());
        return text;
    }

    std::string rest()
    {
        std::string const text = m_bytes.substr(m_position);
        m_position = m_bytes.size();
        return text;
    }

private:
    std::string m_bytes;
    std::size_t m_position = 0;
};

/// Collects what is written to standard output or standard error through stdio while it lives.
class CapturedStream
{
public:
    explicit CapturedStream(std::FILE*& stream)
        : m_stream(stream), m_original(stream), m_collector(open_memstream(&m_bytes, &m_size))
    {
        require(m_collector != nullptr, "there is memory for the output");
        m_stream = m_collector;
    }
    ~CapturedStream()
    {
        m_stream = m_original;
        std::fclose(m_collector);
        std::free(m_bytes);
    }
    CapturedStream(CapturedStream const&) = delete;
    CapturedStream& operator=(CapturedStream const&) = delete;

    std::string text() const
    {
        std::fflush(m_collector);
        return std::string(m_bytes, m_size);
    }

private:
    std::FILE*& m_stream;
    std::FILE* m_original;
    char* m_bytes = nullptr;
    std::size_t m_size = 0;
    std::FILE* m_collector;
};

} // namespace fuzz
