#include "history/RunHistory.h"

#include "history/historyFile.h"
#include "text/CTextHash.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace qix
{

namespace
{

[[noreturn]] void throwUnusable(std::string const& file, std::string const& why)
{
    throw std::runtime_error("what earlier runs have left in '" + file + "' is not used: " + why);
}

/// All bytes of the file, or none when there is no file.
std::string readBytes(std::string const& file)
{
    std::error_code error;
    std::filesystem::file_status const status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::not_found)
    {
        return std::string();
    }
    // Opening a named pipe would wait for somebody who writes to it.
    if (status.type() != std::filesystem::file_type::regular)
    {
        throwUnusable(file, "it is no regular file");
    }
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream.is_open())
    {
        throwUnusable(file, std::strerror(errno));
    }
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

class CReader
{
public:
    CReader(std::string const& file, std::string const& bytes) : m_file(file), m_bytes(bytes) {}

    RunHistory read()
    {
        readHeader();
        readRecords();
        RunHistory history;
        history.lastRun = m_header.lastRun;
        std::uint64_t begin = 0;
        for (HistoryRecord const& record : m_records)
        {
            std::string id(m_ids.substr(begin, record.idEnd - begin));
            history.tests[std::move(id)] = remembered(record);
            begin = record.idEnd;
        }
        return history;
    }

private:
    void readHeader()
    {
        if (m_bytes.size() < sizeof m_header)
        {
            throwUnusable(m_file,
                          "it is too short, with " + std::to_string(m_bytes.size()) + " bytes");
        }
        std::memcpy(&m_header, m_bytes.data(), sizeof m_header);
        if (std::memcmp(m_header.mark, historyMark, sizeof historyMark) != 0)
        {
            throwUnusable(m_file, "it is no such file");
        }
        if (m_header.version != historyVersion)
        {
            throwUnusable(m_file, "its version is " + std::to_string(m_header.version) +
                                      " and not " + std::to_string(historyVersion));
        }
    }

    void readRecords()
    {
        std::uint64_t const rest = m_bytes.size() - sizeof m_header;
        if (m_header.testCount > rest / sizeof(HistoryRecord) ||
            m_header.idBytes != rest - m_header.testCount * sizeof(HistoryRecord))
        {
            throwUnusable(m_file, "it has " + std::to_string(m_bytes.size()) +
                                      " bytes, which are not as many as it tells");
        }
        m_records.resize(m_header.testCount);
        std::size_t const size = m_records.size() * sizeof(HistoryRecord);
        if (size > 0)
        {
            std::memcpy(m_records.data(), m_bytes.data() + sizeof m_header, size);
        }
        m_ids = std::string_view(m_bytes).substr(sizeof m_header + size);
        checkIds();
    }

    void checkIds() const
    {
        CTextHash hash;
        hash.add(m_ids);
        std::uint64_t end = 0;
        for (HistoryRecord const& record : m_records)
        {
            hash.add(record.idEnd);
            if (record.idEnd < end || record.idEnd > m_ids.size())
            {
                throwUnusable(m_file, "an id ends at " + std::to_string(record.idEnd));
            }
            end = record.idEnd;
        }
        if (hash.get() != m_header.idHash)
        {
            throwUnusable(m_file, "its ids are not those that were written");
        }
    }

    RememberedTest remembered(HistoryRecord const& record) const
    {
        if (record.outcome > static_cast<std::uint32_t>(RememberedTest::Outcome::Other))
        {
            throwUnusable(m_file, "a test has the outcome " + std::to_string(record.outcome));
        }
        return {record.run, static_cast<RememberedTest::Outcome>(record.outcome),
                record.microseconds};
    }

    std::string const& m_file;
    std::string const& m_bytes;
    HistoryHeader m_header{};
    std::vector<HistoryRecord> m_records;
    std::string_view m_ids;
};

} // namespace

RunHistory readRunHistory(std::string const& file)
{
    std::string const bytes = readBytes(file);
    return bytes.empty() ? RunHistory() : CReader(file, bytes).read();
}

} // namespace qix
