#pragma once

#include <qix/CValueWriter.h>
#include <qix/detail/describe.h>
#include <qix/detail/narrowText.h>
#include <qix/detail/registration.h>
#include <zel/CBase.h>
#include <zel/P.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace qix::detail
{

template <typename Values>
using EachReference = decltype(*std::begin(Values::get()));

/// What the body gets of each value. What an iterator makes on the way is kept as a value.
template <typename Iterator, typename Reference>
struct ParamOf
{
    using Type = typename Iterator::value_type;
};
template <typename Iterator, typename T>
struct ParamOf<Iterator, T&>
{
    using Type = std::remove_cv_t<T>;
};
template <typename Values>
using EachParam = typename ParamOf<std::decay_t<decltype(std::begin(Values::get()))>,
                                   EachReference<Values>>::Type;

/// A value that no range holds.
template <typename Param>
struct KeptParam : zel::CBase
{
    explicit KeptParam(Param const& v) : value(v) {}

    Param value;
};

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
    static std::vector<zel::P<KeptParam<EachParam<Values>>>> kept;
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
            kept.push_back(zel::newObj<KeptParam<EachParam<Values>>>(value));
            addEach<EachParam<Values>>(list, number, kept.back()->value, make);
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

/// Lists a test for each value: a function of the class, or an object where it has a fixture.
template <typename Test, typename Values>
void listEachTest(CTestList& list)
{
    if constexpr (std::is_base_of_v<CTestItem, Test>)
    {
        listEach<Values>(list, &makeEach<Test>);
    }
    else
    {
        listEach<Values>(list, &callEach<Test>);
    }
}

} // namespace qix::detail
