#pragma once

#include <qix/detail/matching.h>
#include <qix/export.h>
#include <qix/matchers/combinations.h>

#include <cstddef>
#include <iterator>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace qix::detail
{

/// The elements between two iterators, which are not owned.
template <typename Iterator>
class TRange
{
public:
    TRange(Iterator begin, Iterator end) : m_begin(begin), m_end(end) {}

    Iterator begin() const { return m_begin; }
    Iterator end() const { return m_end; }

private:
    Iterator m_begin;
    Iterator m_end;
};

template <typename V>
using IfRange = std::enable_if_t<fulfils<V, RangeTrait>>;

/// Writes which element it is, and what was expected in its place.
template <typename Element, typename Expected>
void explainElement(CValueWriter& out, std::size_t index, Element const& element,
                    Expected const& expected)
{
    out.text("element ");
    out.unsignedInteger(index);
    out.text(" is ");
    out.value(element);
    out.text(", expected ");
    out.value(expected);
    explainOne(out, ": ", expected, element);
}

QIX_EXPORT void explainCount(CValueWriter& out, std::size_t count, std::size_t expected);

/// Elements that are expected one by one, in their order.
template <typename... T>
class TElements
{
public:
    explicit TElements(T... expected) : m_expected(std::move(expected)...) {}

    template <typename V, typename = IfRange<V>>
    bool matches(V const& range) const
    {
        auto element = std::begin(range);
        auto const end = std::end(range);
        auto const matchesNext = [&](auto const& expected)
        {
            bool const matches = element != end && detail::matches(expected, *element);
            element != end ? static_cast<void>(++element) : static_cast<void>(0);
            return matches;
        };
        bool const all = std::apply(
            [&](auto const&... expected) { return (matchesNext(expected) && ...); }, m_expected);
        return all && element == end;
    }

    void describe(CValueWriter& out) const
    {
        out.text("{");
        describeAll(out, ", ", m_expected);
        out.text("}");
    }

    template <typename V, typename = IfRange<V>>
    void explain(CValueWriter& out, V const& range) const
    {
        auto element = std::begin(range);
        auto const end = std::end(range);
        std::size_t index = 0;
        bool isTold = false;
        auto const tell = [&](auto const& expected)
        {
            if (isTold || element == end)
            {
                return;
            }
            isTold = !detail::matches(expected, *element);
            if (isTold)
            {
                explainElement(out, index, *element, expected);
            }
            ++element;
            ++index;
        };
        std::apply([&](auto const&... expected) { (tell(expected), ...); }, m_expected);
        if (!isTold)
        {
            for (; element != end; ++element)
            {
                ++index;
            }
            explainCount(out, index, sizeof...(T));
        }
    }

private:
    std::tuple<T...> m_expected;
};

/// Elements that are equal to those of another range, which is kept or referred to.
template <typename R>
class TSameElements
{
public:
    explicit TSameElements(R range) : m_expected(std::move(range)) {}

    template <typename V, typename = IfRange<V>>
    bool matches(V const& range) const
    {
        return find(range, [](auto&&...) {});
    }

    void describe(CValueWriter& out) const { out.value(m_expected); }

    template <typename V, typename = IfRange<V>>
    void explain(CValueWriter& out, V const& range) const
    {
        find(range, [&](std::size_t index, auto const& element, auto const& expected)
             { describeDifference(out, index, element, expected); });
    }

private:
    struct End
    {
        void describe(CValueWriter& out) const { out.text("the end"); }
    };

    template <typename Element, typename Other>
    static void describeDifference(CValueWriter& out, std::size_t index, Element const& element,
                                   Other const& expected)
    {
        out.text("element ");
        out.unsignedInteger(index);
        out.text(" is ");
        out.value(element);
        out.text(", expected ");
        out.value(expected);
    }

    /// True when there is no difference, of which \p tell is told.
    template <typename V, typename Tell>
    bool find(V const& range, Tell const& tell) const
    {
        auto element = std::begin(range);
        auto const end = std::end(range);
        auto expected = std::begin(m_expected);
        auto const expectedEnd = std::end(m_expected);
        std::size_t index = 0;
        for (; element != end && expected != expectedEnd; ++element, ++expected, ++index)
        {
            if (!detail::matches(*expected, *element))
            {
                tell(index, *element, *expected);
                return false;
            }
        }
        if (element != end)
        {
            tell(index, *element, End());
        }
        else if (expected != expectedEnd)
        {
            tell(index, End(), *expected);
        }
        return element == end && expected == expectedEnd;
    }

    R m_expected;
};

/// Which element is to be which expected one, as far as all can be.
class QIX_EXPORT CAssignment
{
public:
    /// \param matches  for each element, whether it matches each of the \p expected ones
    CAssignment(std::vector<std::vector<bool>> const& matches, std::size_t expected);

    /// The expectations that no element is left for, and the elements that none is left for.
    std::vector<std::size_t> const& getMissing() const noexcept { return m_missing; }
    std::vector<std::size_t> const& getSurplus() const noexcept { return m_surplus; }

private:
    std::vector<std::size_t> m_missing;
    std::vector<std::size_t> m_surplus;
};

/// Elements that are expected in any order.
template <typename... T>
class TElementsInAnyOrder
{
public:
    explicit TElementsInAnyOrder(T... expected) : m_expected(std::move(expected)...) {}

    template <typename V, typename = IfRange<V>>
    bool matches(V const& range) const
    {
        CAssignment const assignment = assign(range);
        return assignment.getMissing().empty() && assignment.getSurplus().empty();
    }

    void describe(CValueWriter& out) const
    {
        out.text("in any order {");
        describeAll(out, ", ", m_expected);
        out.text("}");
    }

    template <typename V, typename = IfRange<V>>
    void explain(CValueWriter& out, V const& range) const
    {
        CAssignment const assignment = assign(range);
        char const* between = "";
        for (std::size_t const missing : assignment.getMissing())
        {
            out.text(between);
            out.text("no element is ");
            describeExpected(out, missing);
            between = "; ";
        }
        std::size_t index = 0;
        for (auto const& element : range)
        {
            for (std::size_t const surplus : assignment.getSurplus())
            {
                if (surplus == index)
                {
                    out.text(between);
                    out.text("not expected is element ");
                    out.unsignedInteger(index);
                    out.text(", ");
                    out.value(element);
                    between = "; ";
                }
            }
            ++index;
        }
    }

private:
    template <typename V>
    CAssignment assign(V const& range) const
    {
        std::vector<std::vector<bool>> all;
        for (auto const& element : range)
        {
            all.push_back(
                std::apply([&](auto const&... expected)
                           { return std::vector<bool>{detail::matches(expected, element)...}; },
                           m_expected));
        }
        return CAssignment(all, sizeof...(T));
    }

    void describeExpected(CValueWriter& out, std::size_t index) const
    {
        std::size_t i = 0;
        std::apply([&](auto const&... expected)
                   { ((i++ == index ? out.value(expected) : void()), ...); },
                   m_expected);
    }

    std::tuple<T...> m_expected;
};

template <typename T>
class TContains
{
public:
    explicit TContains(T expected) : m_expected(std::move(expected)) {}

    template <typename V, typename = IfRange<V>>
    bool matches(V const& range) const
    {
        for (auto const& element : range)
        {
            if (detail::matches(m_expected, element))
            {
                return true;
            }
        }
        return false;
    }

    void describe(CValueWriter& out) const
    {
        out.text("contains ");
        out.value(m_expected);
    }

private:
    T m_expected;
};

template <typename T>
class TEach
{
public:
    explicit TEach(T expected) : m_expected(std::move(expected)) {}

    template <typename V, typename = IfRange<V>>
    bool matches(V const& range) const
    {
        for (auto const& element : range)
        {
            if (!detail::matches(m_expected, element))
            {
                return false;
            }
        }
        return true;
    }

    void describe(CValueWriter& out) const
    {
        out.text("each is ");
        out.value(m_expected);
    }

    template <typename V, typename = IfRange<V>>
    void explain(CValueWriter& out, V const& range) const
    {
        std::size_t index = 0;
        for (auto const& element : range)
        {
            if (!detail::matches(m_expected, element))
            {
                explainElement(out, index, element, m_expected);
                return;
            }
            ++index;
        }
    }

private:
    T m_expected;
};

template <typename T>
class THasSize
{
public:
    explicit THasSize(T expected) : m_expected(std::move(expected)) {}

    template <typename V>
    auto matches(V const& container) const -> decltype(std::size(container), true)
    {
        return detail::matches(m_expected, std::size(container));
    }

    void describe(CValueWriter& out) const
    {
        out.text("the size is ");
        out.value(m_expected);
    }

    template <typename V>
    auto explain(CValueWriter& out, V const& container) const
        -> decltype(std::size(container), void())
    {
        out.text("the size is ");
        out.unsignedInteger(std::size(container));
    }

private:
    T m_expected;
};

class CIsEmpty
{
public:
    template <typename V>
    auto matches(V const& container) const -> decltype(std::empty(container), true)
    {
        return std::empty(container);
    }

    void describe(CValueWriter& out) const { out.text("is empty"); }
};

} // namespace qix::detail

namespace qix::matchers
{

/// Matches ranges of exactly these elements, in this order.
template <typename... T>
auto elementsAre(T&&... expected)
{
    return detail::TElements<detail::Expected<T>...>(std::forward<T>(expected)...);
}

/// Matches ranges of exactly these elements, in any order.
template <typename... T>
auto elementsInAnyOrder(T&&... expected)
{
    return detail::TElementsInAnyOrder<detail::Expected<T>...>(std::forward<T>(expected)...);
}

/// Matches ranges whose elements are equal to those of \p expected, whatever the types of both.
template <typename R>
auto sameElements(R&& expected)
{
    return detail::TSameElements<detail::Expected<R>>(std::forward<R>(expected));
}

/// The elements between two iterators: as a value to be matched, or for sameElements(). They have
/// to stay until then.
template <typename Iterator>
auto range(Iterator begin, Iterator end)
{
    return detail::TRange<Iterator>(begin, end);
}

/// Matches ranges with at least one element that \p expected matches.
template <typename T>
auto contains(T&& expected)
{
    return detail::TContains<detail::Expected<T>>(std::forward<T>(expected));
}

/// Matches ranges all of whose elements \p expected matches.
template <typename T>
auto each(T&& expected)
{
    return detail::TEach<detail::Expected<T>>(std::forward<T>(expected));
}

/// Matches containers by their size.
template <typename T>
auto hasSize(T&& expected)
{
    return detail::THasSize<detail::Expected<T>>(std::forward<T>(expected));
}

/// Matches containers and texts that are empty.
inline auto isEmpty()
{
    return detail::CIsEmpty();
}

} // namespace qix::matchers
