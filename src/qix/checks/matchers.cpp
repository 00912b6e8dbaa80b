#include <qix/detail/difference.h>
#include <qix/detail/matching.h>
#include <qix/matchers/containers.h>
#include <qix/matchers/numbers.h>
#include <qix/matchers/texts.h>
#include <zel/CInvalidArgError.h>
#include <zel/String.h>

#include "text/decodedText.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <regex>

namespace qix::detail
{

namespace
{

/// Maps a floating-point number to an integer such that neighbours differ by 1.
template <typename Integer, typename T>
Integer ordered(T number) noexcept
{
    Integer bits = 0;
    std::memcpy(&bits, &number, sizeof(number));
    return bits < 0 ? std::numeric_limits<Integer>::min() - bits : bits;
}

template <typename Integer, typename T>
unsigned long long countSteps(T left, T right) noexcept
{
    if (std::isnan(left) || std::isnan(right))
    {
        return std::numeric_limits<unsigned long long>::max();
    }
    auto const l = static_cast<unsigned long long>(ordered<Integer>(left));
    auto const r = static_cast<unsigned long long>(ordered<Integer>(right));
    return left < right ? r - l : l - r;
}

std::regex compiled(std::string const& expression)
{
    try
    {
        return std::regex(expression);
    }
    catch (std::regex_error const& e)
    {
        throw zel::CInvalidArgError(
            "matchesRegex",
            decodedText("\"" + expression + "\" is no regular expression: " + e.what()),
            zel::CProps());
    }
}

/// A maximum bipartite matching of elements and expectations, by augmenting paths.
class CAssigner
{
public:
    CAssigner(std::vector<std::vector<bool>> const& matches, std::size_t expected)
        : m_matches(matches), m_elementOf(expected)
    {
    }

    bool assign(std::size_t element)
    {
        m_isVisited.assign(m_elementOf.size(), false);
        return tryToAssign(element);
    }

    std::vector<std::optional<std::size_t>> const& getElements() const noexcept
    {
        return m_elementOf;
    }

private:
    bool tryToAssign(std::size_t element)
    {
        for (std::size_t i = 0; i < m_elementOf.size(); ++i)
        {
            if (!m_matches[element][i] || m_isVisited[i])
            {
                continue;
            }
            m_isVisited[i] = true;
            if (!m_elementOf[i] || tryToAssign(*m_elementOf[i]))
            {
                m_elementOf[i] = element;
                return true;
            }
        }
        return false;
    }

    std::vector<std::vector<bool>> const& m_matches;
    std::vector<std::optional<std::size_t>> m_elementOf;
    std::vector<bool> m_isVisited;
};

} // namespace

unsigned long long countUlps(float left, float right) noexcept
{
    return countSteps<std::int32_t>(left, right);
}

unsigned long long countUlps(double left, double right) noexcept
{
    return countSteps<std::int64_t>(left, right);
}

void refuseTolerance(double tolerance)
{
    if (!(tolerance >= 0))
    {
        CValueWriter value;
        value.floating(tolerance);
        throw zel::CInvalidArgError(
            "near", decodedText("the tolerance must not be negative, and is " + value.written()),
            zel::CProps());
    }
}

bool isWithin(double left, double right, double bound) noexcept
{
    if (std::isinf(left) || std::isinf(right))
    {
        return std::isinf(left) && std::isinf(right) && std::signbit(left) == std::signbit(right);
    }
    return std::abs(left - right) <= bound;
}

bool areSameTexts(std::string_view value, std::string const& expected)
{
    return value == expected;
}

void explainTextMatch(CValueWriter& out, CompareTexts* compare, std::string_view value,
                      std::string const& expected)
{
    constexpr std::size_t longText = 40;
    if (compare == &areSameTexts)
    {
        explainTexts(out, value, expected, std::max(value.size(), expected.size()) > longText);
    }
}

bool areSameWithoutCase(std::string_view value, std::string const& expected)
{
    return decodedText(value).Lower() == decodedText(expected).Lower();
}

bool hasText(std::string_view value, std::string const& expected)
{
    return value.find(expected) != std::string_view::npos;
}

bool beginsWithText(std::string_view value, std::string const& expected)
{
    return value.substr(0, expected.size()) == expected;
}

bool endsWithText(std::string_view value, std::string const& expected)
{
    return value.size() >= expected.size() &&
           value.substr(value.size() - expected.size()) == expected;
}

bool matchesWholeRegex(std::string_view value, std::string const& expected)
{
    return std::regex_match(value.begin(), value.end(), compiled(expected));
}

bool hasRegex(std::string_view value, std::string const& expected)
{
    return std::regex_search(value.begin(), value.end(), compiled(expected));
}

void explainCount(CValueWriter& out, std::size_t count, std::size_t expected)
{
    out.text("there are ");
    out.unsignedInteger(count);
    out.text(" elements, expected ");
    out.unsignedInteger(expected);
}

CAssignment::CAssignment(std::vector<std::vector<bool>> const& matches, std::size_t expected)
{
    CAssigner assigner(matches, expected);
    for (std::size_t i = 0; i < matches.size(); ++i)
    {
        if (!assigner.assign(i))
        {
            m_surplus.push_back(i);
        }
    }
    for (std::size_t i = 0; i < expected; ++i)
    {
        if (!assigner.getElements()[i])
        {
            m_missing.push_back(i);
        }
    }
}

} // namespace qix::detail
