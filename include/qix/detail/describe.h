#pragma once

#include <qix/CValueWriter.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#ifdef __cpp_impl_three_way_comparison
#include <compare>
#endif

class wxString;

namespace qix::detail
{

// These are not among the arithmetic types unless the extensions of GNU are on.
__extension__ using Int128 = __int128;
__extension__ using UnsignedInt128 = unsigned __int128;

template <typename T, template <typename> typename Trait, typename = void>
constexpr bool fulfils = false;
template <typename T, template <typename> typename Trait>
constexpr bool fulfils<T, Trait, std::void_t<Trait<T>>> = true;

template <typename T>
using DescribeTrait = decltype(std::declval<T const&>().describe(std::declval<CValueWriter&>()));
template <typename T>
using StreamTrait = decltype(std::declval<std::ostream&>() << std::declval<T const&>());
/// Converts to a stream, which only operations for the very type find: an enumeration would find
/// those for numbers, too.
struct StreamProbe
{
    operator std::ostream&() const;
};
template <typename T>
using OwnStreamTrait = decltype(std::declval<StreamProbe const&>() << std::declval<T const&>());
template <typename T>
using RangeTrait =
    decltype(std::begin(std::declval<T const&>()) != std::end(std::declval<T const&>()));
template <typename T>
using SizeTrait = std::enable_if_t<std::is_integral_v<decltype(std::declval<T const&>().size())>>;
template <typename T>
using MapTrait = typename T::mapped_type;
template <typename T>
using TupleTrait = decltype(std::tuple_size<T>::value);
template <typename T>
using OptionalTrait =
    std::enable_if_t<std::is_same_v<decltype(std::declval<T const&>().has_value()), bool>,
                     decltype(*std::declval<T const&>())>;
template <typename T>
using ExpectedTrait =
    std::enable_if_t<std::is_same_v<decltype(std::declval<T const&>().has_value()), bool>,
                     decltype(std::declval<T const&>().error())>;
template <typename T>
using PointerTrait = std::enable_if_t<std::is_pointer_v<decltype(std::declval<T const&>().get())>>;
template <typename T>
using BufferTrait =
    decltype(std::declval<T const&>().getData()[std::declval<T const&>().getUsed()]);
template <typename T>
using VariantTrait = std::enable_if_t<
    std::is_same_v<decltype(std::declval<T const&>().valueless_by_exception()), bool>,
    decltype(std::declval<T const&>().index())>;
template <typename T>
using NullableTrait =
    std::enable_if_t<std::is_convertible_v<std::nullptr_t, T> && std::is_class_v<T>,
                     decltype(static_cast<bool>(std::declval<T const&>() == nullptr))>;
template <typename T>
using TimeTrait = decltype(std::declval<T const&>().count() * T::period::num);

template <typename T>
constexpr bool isInt128 = std::is_same_v<T, Int128> || std::is_same_v<T, UnsignedInt128>;

/// Strings of the standard library, whichever their characters.
template <typename T>
constexpr bool isString = std::is_base_of_v<std::string, T>;
template <typename Char, typename Traits, typename Allocator>
constexpr bool isString<std::basic_string<Char, Traits, Allocator>> = true;
template <typename Char, typename Traits>
constexpr bool isString<std::basic_string_view<Char, Traits>> = true;

template <typename T>
void describe(CValueWriter& out, T const& value);

/// Characters of which texts consist.
template <typename T>
constexpr bool isCharacter =
    std::is_same_v<T, char> || std::is_same_v<T, wchar_t> || std::is_same_v<T, char16_t> ||
#ifdef __cpp_char8_t
    std::is_same_v<T, char8_t> ||
#endif
    std::is_same_v<T, char32_t>;

template <typename T>
void quote(CValueWriter& out, std::basic_string_view<T> characters)
{
#ifdef __cpp_char8_t
    if constexpr (std::is_same_v<T, char8_t>)
    {
        auto const* const bytes = reinterpret_cast<char const*>(characters.data());
        out.quoted(std::string_view(bytes, characters.size()));
        return;
    }
    else
#endif
    {
        out.quoted(characters);
    }
}

/// The elements of a range that are shown before the rest is counted only.
constexpr std::size_t shownElements = 50;

/// The elements of a range that does not tell its size that are counted; it may be without end.
constexpr std::size_t countedElements = 10000;

template <typename T, typename Element>
void describeElement(CValueWriter& out, Element const& element)
{
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

/// Writes how many elements follow the \p count that have been written, or seen.
template <typename T>
void describeRest(CValueWriter& out, T const& range, std::size_t count)
{
    std::size_t size = count;
    if constexpr (fulfils<T, SizeTrait>)
    {
        size = static_cast<std::size_t>(range.size());
    }
    if (size > shownElements && (fulfils<T, SizeTrait> || size < countedElements))
    {
        out.text(", and ");
        out.unsignedInteger(size - shownElements);
        out.text(" more");
    }
    else if (size > shownElements)
    {
        out.text(", and more");
    }
}

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
            describeElement<T>(out, element);
        }
        if (++count > (fulfils<T, SizeTrait> ? shownElements : countedElements))
        {
            break;
        }
    }
    describeRest(out, range, count);
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

template <template <typename...> typename Variant, typename... T, std::size_t... i>
void describeVariant(CValueWriter& out, Variant<T...> const& variant, std::index_sequence<i...>)
{
    using std::get;
    if (variant.valueless_by_exception())
    {
        out.text("variant(valueless)");
        return;
    }
    out.text("variant(index ");
    out.unsignedInteger(variant.index());
    out.text(": ");
    ((variant.index() == i ? describe(out, get<i>(variant)) : void()), ...);
    out.text(")");
}

template <template <typename...> typename Variant, typename... T>
void describeVariant(CValueWriter& out, Variant<T...> const& variant)
{
    describeVariant(out, variant, std::index_sequence_for<T...>());
}

/// The name of the type, as the compiler writes it.
template <typename T>
constexpr std::string_view nameOf() noexcept
{
    return __PRETTY_FUNCTION__;
}

/// The first value of an enumeration whose name is asked for, and how many there are. One without
/// a fixed type has too few values to be asked, but for compilers that do not mind.
template <typename E>
constexpr int firstEnumerator = std::is_signed_v<std::underlying_type_t<E>> ? -16 : 0;
template <typename E>
constexpr int enumeratorCount = 128;
#if defined __clang__ && __clang_major__ >= 16
template <typename E>
constexpr bool hasNames = !std::is_convertible_v<E, std::underlying_type_t<E>>;
#else
template <typename E>
constexpr bool hasNames = true;
#endif

/// The names of the values, as the compiler writes them; all at once, which is quick to compile.
template <typename E, E... values>
constexpr char const* enumeratorsText() noexcept
{
    return __PRETTY_FUNCTION__;
}

template <typename E, int... i>
constexpr char const* enumeratorsText(std::integer_sequence<int, i...>) noexcept
{
    return enumeratorsText<E, static_cast<E>(i + firstEnumerator<E>)...>();
}

template <typename T>
void describeInt128(CValueWriter& out, T value)
{
    bool const isNegative = value < 0;
    auto const bits = static_cast<UnsignedInt128>(value);
    UnsignedInt128 const magnitude = isNegative ? 0 - bits : bits;
    out.integer128(isNegative, static_cast<unsigned long long>(magnitude >> 64),
                   static_cast<unsigned long long>(magnitude));
}

template <typename T>
void describeArithmetic(CValueWriter& out, T value)
{
    if constexpr (isInt128<T>)
    {
        describeInt128(out, value);
    }
    else if constexpr (std::is_same_v<T, bool>)
    {
        out.boolean(value);
    }
    else if constexpr (std::is_same_v<T, char>)
    {
        out.character(value);
    }
#ifdef __cpp_char8_t
    else if constexpr (std::is_same_v<T, char8_t>)
    {
        out.character(static_cast<char>(value));
    }
#endif
    else if constexpr (isCharacter<T>)
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
void describeTime(CValueWriter& out, T const& value)
{
    if constexpr (std::is_integral_v<typename T::rep>)
    {
        // hours::max() has more seconds than fit into 64 bits.
        describeInt128(out, static_cast<Int128>(value.count()) * T::period::num);
    }
    else
    {
        describe(out, value.count() * T::period::num);
    }
    if constexpr (T::period::den != 1)
    {
        out.text("/");
        out.integer(T::period::den);
    }
    out.text(" s");
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
    using Value = std::remove_const_t<T>;
    if constexpr (isCharacter<Value>)
    {
        value == nullptr ? out.address(value) : quote(out, std::basic_string_view<Value>(value));
    }
    else
    {
        describeAddress(out, value);
    }
}

template <typename E>
void describeEnumeration(CValueWriter& out, E value)
{
    auto const number = static_cast<std::underlying_type_t<E>>(value);
    if constexpr (hasNames<E> && !std::is_same_v<std::underlying_type_t<E>, bool>)
    {
        auto const index =
            static_cast<std::size_t>(number) - static_cast<std::size_t>(firstEnumerator<E>);
        using Values = std::make_integer_sequence<int, enumeratorCount<E>>;
        if (out.enumerator(enumeratorsText<E>(Values()), index))
        {
            out.text(" (");
            describe(out, number);
            out.text(")");
            return;
        }
    }
    describe(out, number);
}

template <typename T>
void describeExpected(CValueWriter& out, T const& value)
{
    if (!value.has_value())
    {
        out.text("unexpected(");
        describe(out, value.error());
        out.text(")");
    }
    else if constexpr (std::is_void_v<decltype(*value)>)
    {
        out.text("expected()");
    }
    else
    {
        describe(out, *value);
    }
}

template <typename T>
void writeToStream(std::ostream& stream, void const* object)
{
    stream << *static_cast<T const*>(object);
}

/// Objects without padding, or whose padding can be told apart, so that it need not be read.
#if __has_builtin(__builtin_clear_padding)
template <typename T>
constexpr bool hasShownBytes = std::has_unique_object_representations_v<T> ||
                               (std::is_trivially_copyable_v<T> && sizeof(T) <= 65536);
#else
template <typename T>
constexpr bool hasShownBytes = std::has_unique_object_representations_v<T>;
#endif

/// Calls \p use with the bytes of the object, in which those that are only padding are 0.
template <typename T, typename Use>
void useShownBytes(T const& value, Use const& use)
{
#if __has_builtin(__builtin_clear_padding)
    if constexpr (!std::has_unique_object_representations_v<T>)
    {
        alignas(T) unsigned char copy[sizeof(T)];
        __builtin_memcpy(copy, std::addressof(value), sizeof(T));
        __builtin_clear_padding(reinterpret_cast<T*>(copy));
        use(copy);
        return;
    }
    else
#endif
    {
        use(std::addressof(value));
    }
}

/// Writes the bytes of an object, unless they are more than its value.
template <typename T>
void describeBytes(CValueWriter& out, T const& value)
{
    if constexpr (hasShownBytes<T>)
    {
        useShownBytes(value, [&out](void const* bytes) { out.bytes(bytes, sizeof(T)); });
    }
    else
    {
        out.opaque(sizeof(T));
    }
}

/// The streams of the standard library, by the operations that tell their state.
template <typename T>
using StreamStateTrait =
    std::enable_if_t<std::is_same_v<decltype(std::declval<T const&>().eof()), bool>,
                     decltype(std::declval<T const&>().rdstate())>;

template <typename T>
void describeStreamState(CValueWriter& out, T const& stream)
{
    out.text(stream.good() ? "<stream: good" : "<stream:");
    out.text(stream.bad() ? " bad" : stream.fail() ? " failed" : "");
    out.text(stream.eof() ? " at its end>" : ">");
}

/// Writes the bytes of an object, or that it is none: a function object that is empty, say.
template <typename T>
void describeNullable(CValueWriter& out, T const& value)
{
    value == nullptr ? out.text("nullptr") : describeBytes(out, value);
}

/// Writes an object of a class that neither tells how it is shown nor holds others.
template <typename T>
void describeOpaque(CValueWriter& out, T const& value)
{
    if constexpr (std::is_convertible_v<T const&, std::wstring_view>)
    {
        out.quoted(static_cast<std::wstring_view>(value));
    }
#ifdef __cpp_impl_three_way_comparison
    else if constexpr (std::is_convertible_v<T const&, std::partial_ordering>)
    {
        std::partial_ordering const order = value;
        out.text(std::is_lt(order)   ? "less"
                 : std::is_gt(order) ? "greater"
                 : std::is_eq(order) ? "equal"
                                     : "unordered");
    }
#endif
    else if constexpr (std::is_empty_v<T>)
    {
        out.text(nameOf<T>().find("std::nullopt_t") == std::string_view::npos ? "{}" : "nullopt");
    }
    else if constexpr (fulfils<T, NullableTrait>)
    {
        describeNullable(out, value);
    }
    else
    {
        describeBytes(out, value);
    }
}

/// Writes an object that holds others: the first way that the type offers.
template <typename T>
void describeCompound(CValueWriter& out, T const& value)
{
    if constexpr (fulfils<T, RangeTrait>)
    {
        describeRange(out, value);
    }
    else if constexpr (fulfils<T, TupleTrait>)
    {
        describeTuple(out, value, std::make_index_sequence<std::tuple_size<T>::value>());
    }
    else if constexpr (fulfils<T, TimeTrait>)
    {
        describeTime(out, value);
    }
    else if constexpr (fulfils<T, VariantTrait>)
    {
        describeVariant(out, value);
    }
    else if constexpr (fulfils<T, StreamStateTrait>)
    {
        describeStreamState(out, value);
    }
    else
    {
        describeOpaque(out, value);
    }
}

/// What a smart pointer points to, if that is an object and known.
template <typename T>
using PointeeTrait =
    std::enable_if_t<std::is_object_v<std::remove_reference_t<decltype(*std::declval<T const&>())>>,
                     std::integral_constant<std::size_t, sizeof(*std::declval<T const&>())>>;

template <typename T>
void describeSmartPointer(CValueWriter& out, T const& value)
{
    // Text would be read up to a NUL, which the array of a smart pointer may lack.
    describeAddress(out, value.get());
    if constexpr (fulfils<T, PointeeTrait>)
    {
        if (value.get() != nullptr)
        {
            out.text(" -> ");
            describe(out, *value);
        }
    }
}

/// Writes an object of a class or a union: the first way that the type offers.
template <typename T>
void describeObject(CValueWriter& out, T const& value)
{
    if constexpr (fulfils<T, DescribeTrait>)
    {
        value.describe(out);
    }
    else if constexpr (fulfils<T, ExpectedTrait>)
    {
        describeExpected(out, value);
    }
    else if constexpr (fulfils<T, OptionalTrait>)
    {
        value.has_value() ? describe(out, *value) : out.text("nullopt");
    }
    else if constexpr (fulfils<T, PointerTrait>)
    {
        describeSmartPointer(out, value);
    }
    else if constexpr (fulfils<T, BufferTrait>)
    {
        out.bytes(value.getData(), static_cast<std::size_t>(value.getUsed()));
    }
    else if constexpr (fulfils<T, StreamTrait>)
    {
        // A conversion, to text say, is asked for only where there is no stream: types that convert
        // to many others have one.
        out.streamed(&writeToStream<T>, std::addressof(value));
    }
    else if constexpr (std::is_convertible_v<T const&, std::string_view>)
    {
        out.quoted(static_cast<std::string_view>(value));
    }
    else
    {
        describeCompound(out, value);
    }
}

/// Writes an array, which is text when it consists of characters and may lack the NUL at its end.
template <typename T, std::size_t n>
void describeArray(CValueWriter& out, T const (&value)[n])
{
    if constexpr (isCharacter<T>)
    {
        std::basic_string_view<T> const all(value, n);
        quote(out, all.substr(0, all.find(T())));
    }
    else
    {
        describeRange(out, value);
    }
}

/// Writes \p value as best as its type allows.
template <typename T>
void describe(CValueWriter& out, T const& value)
{
    if constexpr (std::is_null_pointer_v<T>)
    {
        out.address(nullptr);
    }
    else if constexpr (std::is_arithmetic_v<T> || isInt128<T>)
    {
        describeArithmetic(out, value);
    }
    else if constexpr (std::is_pointer_v<T>)
    {
        describePointer(out, value);
    }
    else if constexpr (std::is_member_pointer_v<T>)
    {
        value == nullptr ? out.address(nullptr) : describeBytes(out, value);
    }
    else if constexpr (std::is_enum_v<T> && !fulfils<T, OwnStreamTrait>)
    {
        describeEnumeration(out, value);
    }
    else if constexpr (std::is_array_v<T>)
    {
        describeArray(out, value);
    }
    else if constexpr (std::is_base_of_v<wxString, T>)
    {
        out.quoted(static_cast<wxString const&>(value));
    }
    else if constexpr (isString<T>)
    {
        quote(out, std::basic_string_view<typename T::value_type>(value.data(), value.size()));
    }
    else
    {
        describeObject(out, value);
    }
}

/// Something that can be described later, and which it does not own.
struct ValueRef
{
    using Describe = void(CValueWriter& out, void const* object);

    /// \param o  may be volatile: \p d knows its type
    ValueRef(void const volatile* o, Describe* d) noexcept
        : object(const_cast<void const*>(o)), describe(d)
    {
    }

    void const* object;
    Describe* describe;
};

template <typename T>
void describeValue(CValueWriter& out, void const* object)
{
    describe(out, *static_cast<T const*>(object));
}

} // namespace qix::detail

namespace qix
{

template <typename T>
void CValueWriter::value(T const& value)
{
    detail::describe(*this, value);
}

} // namespace qix
