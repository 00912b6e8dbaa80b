#pragma once

#include <qix/approx.h>
#include <qix/export.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

class wxString;

namespace qix::detail
{

/// Writes values as people read them, for the messages of failed checks.
///
/// Its work is done in the library, so that a test file needs no stream and no container header.
class QIX_EXPORT CValueWriter
{
public:
    /// Text as it stands.
    void text(std::string_view bytes);

    /// Text in quotes, what cannot be printed escaped.
    void quoted(std::string_view bytes);
    void quoted(std::wstring_view characters);
    void quoted(wxString const& characters);

    void boolean(bool value);
    void character(char value);
    void wideCharacter(char32_t value);
    void integer(long long value);
    void unsignedInteger(unsigned long long value);
    void floating(float value);
    void floating(double value);
    void floating(long double value);
    void address(void const* value);

    /// The \p size bytes from \p object on in hexadecimal.
    void bytes(void const* object, std::size_t size);

    /// What \p write puts into a stream for \p object.
    void streamed(void (*write)(std::ostream& stream, void const* object), void const* object);

    /// What has been written.
    std::string const& written() const noexcept { return m_written; }

private:
    std::string m_written;
};

template <typename T, template <typename> typename Trait, typename = void>
constexpr bool fulfils = false;
template <typename T, template <typename> typename Trait>
constexpr bool fulfils<T, Trait, std::void_t<Trait<T>>> = true;

template <typename T>
using StreamTrait = decltype(std::declval<std::ostream&>() << std::declval<T const&>());
template <typename T>
using RangeTrait =
    decltype(std::begin(std::declval<T const&>()) != std::end(std::declval<T const&>()));
template <typename T>
using MapTrait = typename T::mapped_type;
template <typename T>
using TupleTrait = decltype(std::tuple_size<T>::value);
template <typename T>
using OptionalTrait =
    std::enable_if_t<std::is_same_v<decltype(std::declval<T const&>().has_value()), bool>,
                     decltype(*std::declval<T const&>())>;
template <typename T>
using PointerTrait = std::enable_if_t<std::is_pointer_v<decltype(std::declval<T const&>().get())>>;
template <typename T>
using BufferTrait =
    decltype(std::declval<T const&>().getData()[std::declval<T const&>().getUsed()]);
template <typename T>
using TimeTrait = decltype(std::declval<T const&>().count() * T::period::num);

template <typename T>
void describe(CValueWriter& out, T const& value);

/// The elements of a range that are shown before the rest is counted only.
constexpr std::size_t shownElements = 50;

template <typename T>
void describeRange(CValueWriter& out, T const& range)
{
    std::size_t count = 0;
    out.text("{");
    for (auto const& element : range)
    {
        if (count < shownElements)
        {
            out.text(count == 0 ? "" : ", ");
            if constexpr (fulfils<T, MapTrait>)
            {
                describe(out, element.first);
                out.text(": ");
                describe(out, element.second);
            }
            else
            {
                describe(out, element);
            }
        }
        ++count;
    }
    if (count > shownElements)
    {
        out.text(", and ");
        out.unsignedInteger(count - shownElements);
        out.text(" more");
    }
    out.text("}");
}

template <typename T, std::size_t... i>
void describeTuple(CValueWriter& out, T const& tuple, std::index_sequence<i...>)
{
    using std::get;
    static_cast<void>(tuple);
    out.text("(");
    ((out.text(i == 0 ? "" : ", "), describe(out, get<i>(tuple))), ...);
    out.text(")");
}

template <typename T>
void describeArithmetic(CValueWriter& out, T value)
{
    if constexpr (std::is_same_v<T, bool>)
    {
        out.boolean(value);
    }
    else if constexpr (std::is_same_v<T, char>)
    {
        out.character(value);
    }
    else if constexpr (std::is_same_v<T, wchar_t> || std::is_same_v<T, char16_t> ||
                       std::is_same_v<T, char32_t>)
    {
        out.wideCharacter(static_cast<char32_t>(value));
    }
    else if constexpr (std::is_floating_point_v<T>)
    {
        out.floating(value);
    }
    else if constexpr (std::is_signed_v<T>)
    {
        out.integer(value);
    }
    else
    {
        out.unsignedInteger(value);
    }
}

template <typename T>
void describeAddress(CValueWriter& out, T* value)
{
    if constexpr (std::is_function_v<T>)
    {
        out.address(reinterpret_cast<void const*>(value));
    }
    else
    {
        out.address(const_cast<void const*>(static_cast<void const volatile*>(value)));
    }
}

template <typename T>
void describePointer(CValueWriter& out, T* value)
{
    if constexpr (std::is_same_v<std::remove_const_t<T>, char>)
    {
        value == nullptr ? out.address(value) : out.quoted(std::string_view(value));
    }
    else if constexpr (std::is_same_v<std::remove_const_t<T>, wchar_t>)
    {
        value == nullptr ? out.address(value) : out.quoted(std::wstring_view(value));
    }
    else
    {
        describeAddress(out, value);
    }
}

template <typename T>
void writeToStream(std::ostream& stream, void const* object)
{
    stream << *static_cast<T const*>(object);
}

/// Writes what is no number, pointer or text: the first way that the type offers.
template <typename T>
void describeObject(CValueWriter& out, T const& value)
{
    if constexpr (std::is_same_v<T, CApprox>)
    {
        value.describe(out);
    }
    else if constexpr (fulfils<T, OptionalTrait>)
    {
        value.has_value() ? describe(out, *value) : out.text("nullopt");
    }
    else if constexpr (fulfils<T, PointerTrait>)
    {
        // Text would be read up to a NUL, which the array of a smart pointer may lack.
        describeAddress(out, value.get());
    }
    else if constexpr (fulfils<T, BufferTrait>)
    {
        out.bytes(value.getData(), static_cast<std::size_t>(value.getUsed()));
    }
    else if constexpr (fulfils<T, StreamTrait> && !std::is_array_v<T>)
    {
        out.streamed(&writeToStream<T>, std::addressof(value));
    }
    else if constexpr (fulfils<T, RangeTrait>)
    {
        describeRange(out, value);
    }
    else if constexpr (fulfils<T, TupleTrait>)
    {
        describeTuple(out, value, std::make_index_sequence<std::tuple_size<T>::value>());
    }
    else if constexpr (fulfils<T, TimeTrait>)
    {
        describe(out, value.count() * T::period::num);
        out.text(T::period::den == 1 ? "" : "/");
        T::period::den == 1 ? void() : out.integer(T::period::den);
        out.text(" s");
    }
    else if constexpr (std::is_enum_v<T>)
    {
        describe(out, static_cast<std::underlying_type_t<T>>(value));
    }
    else if constexpr (std::is_empty_v<T>)
    {
        out.text("{}");
    }
    else
    {
        out.bytes(std::addressof(value), sizeof(value));
    }
}

/// The bytes of text. An array may lack the NUL at its end.
template <typename T>
std::string_view textOf(T const& value)
{
    return value;
}

template <std::size_t n>
std::string_view textOf(char const (&value)[n])
{
    std::string_view const all(value, n);
    return all.substr(0, all.find('\0'));
}

/// Writes \p value as best as its type allows.
template <typename T>
void describe(CValueWriter& out, T const& value)
{
    if constexpr (std::is_null_pointer_v<T>)
    {
        out.address(nullptr);
    }
    else if constexpr (std::is_arithmetic_v<T>)
    {
        describeArithmetic(out, value);
    }
    else if constexpr (std::is_pointer_v<T>)
    {
        describePointer(out, value);
    }
    else if constexpr (std::is_base_of_v<wxString, T>)
    {
        out.quoted(static_cast<wxString const&>(value));
    }
    else if constexpr (std::is_convertible_v<T const&, std::string_view>)
    {
        out.quoted(textOf(value));
    }
    else if constexpr (std::is_convertible_v<T const&, std::wstring_view>)
    {
        out.quoted(static_cast<std::wstring_view>(value));
    }
    else
    {
        describeObject(out, value);
    }
}

} // namespace qix::detail
