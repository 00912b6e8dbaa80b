#include "reporters/reportText.h"

#include <wx/strconv.h>

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace qix
{

namespace
{

/// The highest position up to this one at which a character of UTF-8 may begin.
std::size_t characterBefore(std::string const& text, std::size_t position)
{
    std::size_t const lowest = position - std::min<std::size_t>(position, 3);
    std::size_t found = position;
    while (found > lowest && (static_cast<unsigned char>(text[found]) & 0xC0U) == 0x80U)
    {
        --found;
    }
    return found;
}

} // namespace

std::string toUtf8(zel::String const& text)
{
    static wxMBConvUTF8 const utf8;
    if (text.empty())
    {
        return std::string();
    }
    return text.toEncodingSafe(utf8, nullptr);
}

std::uint64_t inMicroseconds(std::chrono::nanoseconds time) noexcept
{
    auto const count = std::chrono::duration_cast<std::chrono::microseconds>(time).count();
    return count < 0 ? 0 : static_cast<std::uint64_t>(count);
}

std::string formatSeconds(std::chrono::nanoseconds time)
{
    constexpr std::uint64_t ofOneSecond = 1000000;
    std::uint64_t const microseconds = inMicroseconds(time);
    return std::to_string(microseconds / ofOneSecond) + '.' +
           std::to_string(ofOneSecond + microseconds % ofOneSecond).substr(1);
}

std::string formatUtcNow()
{
    std::time_t const now = std::time(nullptr);
    std::tm utc = {};
    gmtime_r(&now, &utc);
    char text[32];
    // These letters mean the same in all locales.
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc));
}

std::string cutInTheMiddle(std::string const& text, std::size_t size)
{
    if (text.size() <= size)
    {
        return text;
    }
    std::size_t const head = characterBefore(text, size / 2);
    std::size_t const tail = characterBefore(text, text.size() - size / 2);
    return text.substr(0, head) + "\n[" + std::to_string(tail - head) + " bytes left out]\n" +
           text.substr(tail);
}

} // namespace qix
