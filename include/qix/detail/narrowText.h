#pragma once

#include <zel/language.h>

#include <string>
#include <string_view>
#include <type_traits>

namespace qix::detail
{

/// True for text that is made of bytes: char arrays and pointers, and the strings of C++.
template <typename T>
constexpr bool isNarrowText =
    std::is_same_v<std::decay_t<T>, char const*> || std::is_same_v<std::decay_t<T>, char*> ||
    std::is_same_v<T, std::string> || std::is_same_v<T, std::string_view>;

/// The bytes of narrow text; a null pointer has none.
template <typename T>
std::string_view viewOf(T const& text)
{
    if constexpr (std::is_convertible_v<T const&, char const*>)
    {
        char const* const bytes = text;
        return bytes == nullptr ? std::string_view() : std::string_view(bytes);
    }
    else
    {
        return text;
    }
}

} // namespace qix::detail
