#include "supervisor/Message.h"

#include <cstring>
#include <stdexcept>
#include <utility>
#include <vector>

namespace qix
{

namespace
{

thread_local std::string t_spareBytes;

} // namespace

CMessageWriter::CMessageWriter(MessageKind kind) : m_bytes(std::exchange(t_spareBytes, {}))
{
    m_bytes.assign(1, static_cast<char>(kind));
}

CMessageWriter::~CMessageWriter()
{
    t_spareBytes.swap(m_bytes);
}

CMessageWriter& CMessageWriter::add(std::uint64_t number)
{
    m_bytes.append(reinterpret_cast<char const*>(&number), sizeof number);
    return *this;
}

CMessageWriter& CMessageWriter::add(std::string_view text)
{
    add(text.size());
    m_bytes += text;
    return *this;
}

CMessageWriter& CMessageWriter::add(zel::String const& text)
{
    return add(std::string_view(reinterpret_cast<char const*>(text.wc_str()),
                                text.length() * sizeof(wchar_t)));
}

std::uint64_t CMessageReader::number()
{
    std::uint64_t number = 0;
    std::memcpy(&number, take(sizeof number).data(), sizeof number);
    return number;
}

std::string_view CMessageReader::text()
{
    return take(number());
}

zel::String CMessageReader::string()
{
    std::string_view const bytes = text();
    std::vector<wchar_t> characters(bytes.size() / sizeof(wchar_t));
    if (!characters.empty())
    {
        std::memcpy(characters.data(), bytes.data(), characters.size() * sizeof(wchar_t));
    }
    return zel::String(wxString(characters.data(), characters.size()));
}

std::string_view CMessageReader::take(std::size_t size)
{
    if (size > m_rest.size())
    {
        throw std::out_of_range("a message of a test's process is too short");
    }
    std::string_view const taken = m_rest.substr(0, size);
    m_rest.remove_prefix(size);
    return taken;
}

} // namespace qix
