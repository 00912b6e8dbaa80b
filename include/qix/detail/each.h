#pragma once

#include <qix/CValueWriter.h>
#include <qix/detail/describe.h>
#include <qix/detail/narrowText.h>
#include <qix/detail/registration.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace qix::detail
{

template <typename Values>
using EachReference = decltype(*std::begin(Values::get()));

/// What the body gets of each value. What an iterator makes on the way is kept as a value.
template <typename Values>
using EachParam = std::conditional_t<
    std::is_lvalue_reference_v<EachReference<Values>>,
    std::remove_cv_t<std::remove_reference_t<EachReference<Values>>>,
    typename std::iterator_traits<std::decay_t<decltype(std::begin(Values::get()))>>::value_type>;

/// True for what is written as the same text in each run.
template <typename T>
constexpr bool isTellable = std::is_arithmetic_v<T> || std::is_enum_v<T> || isNarrowText<T> ||
                            isString<T> || isInt128<T> || fulfils<T, DescribeTrait> ||
                            (fulfils<T, StreamTrait> && !std::is_pointer_v<T>);
template <typename First, typename Second>
constexpr bool isTellable<std::pair<First, Second>> = isTellable<First>&& isTellable<Second>;
template <typename... Element>
constexpr bool isTellable<std::tuple<Element...>> = (isTellable<Element> && ...);

template <typename T>
std::string textOfParam(T const& param)
{
    if constexpr (isNarrowText<T>)
    {
        return std::string(viewOf(param));
    }
    else
    {
        CValueWriter out;
        out.value(param);
        return out.written();
    }
}

/// Adds the test for one value: it is called after the value if that is text.
/// \param make  calls a body, or makes an object, with the value
template <typename Param, typename Make>
void addEach(CTestList& list, std::size_t number, Param const& param, Make* make)
{
    constexpr std::size_t longestName = 60;
    std::string const text = textOfParam(param);
    if (isTellable<Param> && text.size() <= longestName)
    {
        list.add(text, "", make, std::addressof(param));
    }
    else
    {
        list.add("#" + std::to_string(number), "param = " + text, make, std::addressof(param));
    }
}

/// Lists a test for each value, which stays where it is as long as the program runs.
template <typename Values, typename Make>
void listEach(CTestList& list, Make* make)
{
    static auto&& range = Values::get();
    static std::vector<std::unique_ptr<EachParam<Values> const>> kept;
    std::size_t number = 0;
    for (auto&& value : range)
    {
        ++number;
        if constexpr (std::is_lvalue_reference_v<EachReference<Values>>)
        {
            addEach<EachParam<Values>>(list, number, value, make);
        }
        else
        {
            kept.push_back(std::make_unique<EachParam<Values> const>(value));
            addEach(list, number, *kept.back(), make);
        }
    }
}

template <typename Test>
void callEach(void const* param)
{
    Test::body(*static_cast<typename Test::Param const*>(param));
}

template <typename Test>
CTestItem* makeEach(void const* param)
{
    return new Test(*static_cast<typename Test::Param const*>(param));
}

template <typename Test, typename Values>
void listEachBody(CTestList& list)
{
    listEach<Values>(list, &callEach<Test>);
}

template <typename Test, typename Values>
void listEachFixture(CTestList& list)
{
    listEach<Values>(list, &makeEach<Test>);
}

} // namespace qix::detail
