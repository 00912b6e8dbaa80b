#pragma once

#include <qix/detail/registration.h>

#include <cstddef>
#include <string_view>
#include <type_traits>

namespace qix::detail
{

/// The name of the type of this number among those that a macro was given, as it is written there.
QIX_EXPORT std::string_view nameOfType(char const* types, std::size_t number);

template <typename Test>
void callTyped(void const* /*param*/)
{
    Test::body();
}

template <typename Test>
CTestItem* makeTyped(void const* /*param*/)
{
    return new Test;
}

/// Lists a test for each of the types: a function of the class, or an object where it has a
/// fixture.
template <template <typename> class Test, typename... Type>
void listTyped(CTestList& list)
{
    std::size_t number = 0;
    if constexpr ((std::is_base_of_v<CTestItem, Test<Type>> && ...))
    {
        (list.add(nameOfType(list.getTypes(), number++), "", &makeTyped<Test<Type>>, nullptr), ...);
    }
    else
    {
        (list.add(nameOfType(list.getTypes(), number++), "", &callTyped<Test<Type>>, nullptr), ...);
    }
}

} // namespace qix::detail
