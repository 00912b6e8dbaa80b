#pragma once

#include <qix/approx.h>
#include <qix/detail/describe.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace qix::detail
{

/// Tells what differs between two operands that are not equal, beside the values themselves.
/// \param isLong  whether the values are so long that a difference is hard to see in them; the
/// place
///     of an element is told of short ones, too
using Explain = void(CValueWriter& out, void const* left, void const* right, bool isLong);

/// Writes where two texts differ: by lines if they have many, by what surrounds the place if not.
QIX_EXPORT void explainTexts(CValueWriter& out, std::string_view left, std::string_view right,
                             bool isLong);

/// Writes where the bytes of two objects differ first, and what surrounds the place.
QIX_EXPORT void explainBytes(CValueWriter& out, void const* left, void const* right,
                             std::size_t size);

/// Writes how far a number is from another one, and how far it may be.
QIX_EXPORT void explainApprox(CValueWriter& out, double left, CApprox const& right);

/// True for text that a comparison reads.
template <typename T>
constexpr bool isComparedText =
    std::is_base_of_v<std::string, T> || std::is_same_v<T, std::string_view> ||
    std::is_same_v<std::decay_t<T>, char const*> || std::is_same_v<std::decay_t<T>, char*>;

template <typename L, typename R>
constexpr bool areTexts =
    isComparedText<L>&& isComparedText<R> &&
    !(std::is_pointer_v<std::decay_t<L>> && std::is_pointer_v<std::decay_t<R>>);

template <typename L, typename R>
using ElementsTrait =
    std::enable_if_t<std::is_convertible_v<decltype(*std::begin(std::declval<L const&>()) ==
                                                    *std::begin(std::declval<R const&>())),
                                           bool>>;

template <typename L, typename R, typename = void>
constexpr bool areRanges = false;
template <typename L, typename R>
constexpr bool areRanges<L, R, std::void_t<RangeTrait<L>, RangeTrait<R>, ElementsTrait<L, R>>> =
    !isString<L> && !isString<R> && !fulfils<L, StreamTrait>;

/// Containers that are in no order, so that a place in them tells nothing.
template <typename T>
using HashTrait = typename T::hasher;

/// Ranges that do not tell their size may be without end.
constexpr std::size_t comparedElements = 1000000;

/// Objects that are shown as bytes.
template <typename T>
constexpr bool isPlain =
    std::is_class_v<T>&& hasShownBytes<T> && !fulfils<T, DescribeTrait> &&
    !fulfils<T, StreamTrait> && !fulfils<T, RangeTrait> && !fulfils<T, TupleTrait> &&
    !fulfils<T, TimeTrait> && !fulfils<T, PointerTrait> && !fulfils<T, OptionalTrait> &&
    !fulfils<T, ExpectedTrait> && !fulfils<T, VariantTrait> &&
    !std::is_convertible_v<T const&, std::wstring_view>;

template <typename T, typename Iterator, typename End>
void describeElementOrEnd(CValueWriter& out, Iterator const& element, End const& end)
{
    element != end ? describeElement<T>(out, *element) : out.text("(end)");
}

template <typename L, typename R>
void explainRanges(CValueWriter& out, L const& left, R const& right)
{
    auto l = std::begin(left);
    auto r = std::begin(right);
    auto const leftEnd = std::end(left);
    auto const rightEnd = std::end(right);
    std::size_t index = 0;
    for (; l != leftEnd && r != rightEnd && bool(*l == *r); ++l, ++r)
    {
        if (++index == comparedElements && !fulfils<L, SizeTrait>)
        {
            return;
        }
    }
    if (l != leftEnd || r != rightEnd)
    {
        out.text("first difference at index ");
        out.unsignedInteger(index);
        out.text(": ");
        describeElementOrEnd<L>(out, l, leftEnd);
        out.text(" and ");
        describeElementOrEnd<R>(out, r, rightEnd);
    }
}

template <typename L, typename R>
void explain(CValueWriter& out, void const* left, void const* right, bool isLong)
{
    L const& l = *static_cast<L const*>(left);
    R const& r = *static_cast<R const*>(right);
    if constexpr (areTexts<L, R>)
    {
        explainTexts(out, l, r, isLong);
    }
    else if constexpr (std::is_same_v<R, CApprox>)
    {
        explainApprox(out, static_cast<double>(l), r);
    }
    else if constexpr (std::is_same_v<L, CApprox>)
    {
        explainApprox(out, static_cast<double>(r), l);
    }
    else if constexpr (areRanges<L, R>)
    {
        explainRanges(out, l, r);
    }
    else if (isLong)
    {
        useShownBytes(l,
                      [&](void const* leftBytes)
                      {
                          useShownBytes(r, [&](void const* rightBytes)
                                        { explainBytes(out, leftBytes, rightBytes, sizeof(L)); });
                      });
    }
}

/// What explains why an \p L and an \p R are not equal, or null.
template <typename L, typename R>
constexpr Explain* explanation() noexcept
{
    constexpr bool isNear = (std::is_same_v<R, CApprox> && std::is_arithmetic_v<L>) ||
                            (std::is_same_v<L, CApprox> && std::is_arithmetic_v<R>);
    constexpr bool isSamePlain = std::is_same_v<L, R> && isPlain<L>;
    constexpr bool areOrderedRanges = areRanges<L, R> && !fulfils<L, HashTrait>;
    constexpr bool areScalars = std::is_scalar_v<L> && std::is_scalar_v<R>;
    if constexpr (!areScalars && (isNear || areTexts<L, R> || isSamePlain || areOrderedRanges))
    {
        return &explain<L, R>;
    }
    else
    {
        return nullptr;
    }
}

} // namespace qix::detail
