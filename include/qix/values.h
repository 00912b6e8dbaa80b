#pragma once

#include <zel/language.h>

#include <cstddef>
#include <type_traits>
#include <utility>

namespace qix
{

/// A list of values. Made by values().
template <typename T, std::size_t size>
struct TValues
{
    /// The first value.
    constexpr T const* begin() const noexcept { return elements; }

    /// Behind the last value.
    constexpr T const* end() const noexcept { return elements + size; }

    T elements[size]; ///< all of them
};

/// The values as a list, in the type that is common to all of them: what QIX_TEST_EACH runs a test
/// for each of.
template <typename... T>
constexpr auto values(T... value)
{
    using Common = std::common_type_t<T...>;
    return TValues<Common, sizeof...(T)>{{static_cast<Common>(std::move(value))...}};
}

} // namespace qix
