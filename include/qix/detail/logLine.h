#pragma once

#include <qix/CValueWriter.h>
#include <qix/detail/narrowText.h>

#include <string>
#include <string_view>
#include <type_traits>

class wxString;

namespace qix::detail
{

/// True for text that needs no decoding.
template <typename T>
constexpr bool isDecodedText =
    std::is_base_of_v<wxString, T> || std::is_same_v<T, std::wstring> ||
    std::is_same_v<std::decay_t<T>, wchar_t const*> || std::is_same_v<std::decay_t<T>, wchar_t*>;

/// The bytes of narrow text as they are; other values as a failed check shows them.
template <typename T>
decltype(auto) lineOf(T const& value)
{
    if constexpr (isNarrowText<T>)
    {
        return viewOf(value);
    }
    else
    {
        CValueWriter out;
        out.value(value);
        return std::string(out.written());
    }
}

} // namespace qix::detail
