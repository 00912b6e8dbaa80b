#pragma once

#include <qix/CValueWriter.h>
#include <qix/detail/narrowText.h>
#include <qix/export.h>

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace qix::detail
{

/// How a text is compared with another one.
using CompareTexts = bool(std::string_view value, std::string const& expected);

QIX_EXPORT bool areSameTexts(std::string_view value, std::string const& expected);
QIX_EXPORT bool areSameWithoutCase(std::string_view value, std::string const& expected);
QIX_EXPORT bool hasText(std::string_view value, std::string const& expected);
QIX_EXPORT bool beginsWithText(std::string_view value, std::string const& expected);
QIX_EXPORT bool endsWithText(std::string_view value, std::string const& expected);
QIX_EXPORT bool matchesWholeRegex(std::string_view value, std::string const& expected);
QIX_EXPORT bool hasRegex(std::string_view value, std::string const& expected);

/// Writes where two texts differ that should be the same; nothing for those that compare otherwise.
QIX_EXPORT void explainTextMatch(CValueWriter& out, CompareTexts* compare, std::string_view value,
                                 std::string const& expected);

/// A text that compares with another one in some way. A null pointer does in none.
class CTextMatcher
{
public:
    CTextMatcher(CompareTexts* compare, std::string_view name, std::string expected)
        : m_compare(compare), m_name(name), m_expected(std::move(expected))
    {
    }

    template <typename T, typename = std::enable_if_t<isNarrowText<T>>>
    bool matches(T const& value) const
    {
        if constexpr (std::is_pointer_v<T>)
        {
            if (value == nullptr)
            {
                return false;
            }
        }
        return m_compare(viewOf(value), m_expected);
    }

    template <typename T, typename = std::enable_if_t<isNarrowText<T>>>
    void explain(CValueWriter& out, T const& value) const
    {
        explainTextMatch(out, m_compare, viewOf(value), m_expected);
    }

    void describe(CValueWriter& out) const
    {
        out.text(m_name);
        out.text(" ");
        out.quoted(std::string_view(m_expected));
    }

private:
    CompareTexts* m_compare;
    std::string_view m_name;
    std::string m_expected;
};

} // namespace qix::detail

namespace qix::matchers
{

/// Matches texts, also those of C, that say the same.
inline auto equalsText(std::string expected)
{
    return detail::CTextMatcher(&detail::areSameTexts, "the text", std::move(expected));
}

/// Matches texts that say the same but for the case of letters, as far as the locale knows them.
inline auto equalsWithoutCase(std::string expected)
{
    return detail::CTextMatcher(&detail::areSameWithoutCase, "without case", std::move(expected));
}

/// Matches texts that \p part is a part of.
inline auto containsText(std::string part)
{
    return detail::CTextMatcher(&detail::hasText, "contains", std::move(part));
}

/// Matches texts that begin with \p part.
inline auto startsWith(std::string part)
{
    return detail::CTextMatcher(&detail::beginsWithText, "starts with", std::move(part));
}

/// Matches texts that end with \p part.
inline auto endsWith(std::string part)
{
    return detail::CTextMatcher(&detail::endsWithText, "ends with", std::move(part));
}

/// Matches texts all of which the regular expression, in the grammar of ECMAScript, describes. The
/// check throws zel::CInvalidArgError when it is none.
inline auto matchesRegex(std::string expression)
{
    return detail::CTextMatcher(&detail::matchesWholeRegex, "matches", std::move(expression));
}

/// Matches texts a part of which the regular expression describes; see matchesRegex().
inline auto containsRegex(std::string expression)
{
    return detail::CTextMatcher(&detail::hasRegex, "contains a match of", std::move(expression));
}

} // namespace qix::matchers
