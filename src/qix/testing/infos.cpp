#include "testing/infos.h"

#include <qix/detail/info.h>

#include "testing/leftByStep.h"
#include "text/forcedUnwind.h"

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

namespace qix
{

namespace
{

using Texts = std::vector<std::string>;

thread_local detail::CInfoScope const* innermost = nullptr;
thread_local Texts leftTexts; ///< of the scopes that an exception has left, the innermost first
thread_local bool isTelling = false;

/// Set while a text is made, so that a check failing in there does not ask for it again.
class CTelling
{
public:
    CTelling() noexcept : m_wasTelling(std::exchange(isTelling, true)) {}
    CTelling(CTelling const&) = delete;
    CTelling& operator=(CTelling const&) = delete;
    ~CTelling() { isTelling = m_wasTelling; }

private:
    bool m_wasTelling;
};

Texts textsOfScopes()
{
    Texts texts = leftTexts;
    for (detail::CInfoScope const* scope = innermost; scope != nullptr; scope = scope->getOuter())
    {
        texts.push_back(scope->makeText());
    }
    std::reverse(texts.begin(), texts.end());
    return texts;
}

using Names = std::vector<std::string_view>;

/// The end of the literal that begins at \p begin.
std::size_t endOfLiteral(std::string_view source, std::size_t begin)
{
    std::size_t end = begin + 1;
    while (end < source.size() && source[end] != source[begin])
    {
        end += source[end] == '\\' ? 2 : 1;
    }
    return end;
}

std::string_view trimmed(std::string_view text)
{
    std::size_t const begin = text.find_first_not_of(' ');
    std::size_t const end = text.find_last_not_of(' ') + 1;
    return begin == std::string_view::npos ? "" : text.substr(begin, end - begin);
}

/// Splits source text at the commas outside of brackets and literals.
/// \param brackets  the opening ones, and in the same order the closing ones
Names splitNames(std::string_view source, std::string_view brackets)
{
    Names names;
    std::size_t begin = 0;
    int depth = 0;
    for (std::size_t i = 0; i < source.size(); ++i)
    {
        std::size_t const bracket = brackets.find(source[i]);
        if (source[i] == '"' || source[i] == '\'')
        {
            i = endOfLiteral(source, i);
        }
        else if (bracket != std::string_view::npos)
        {
            depth += bracket < brackets.size() / 2 ? 1 : -1;
        }
        else if (source[i] == ',' && depth == 0)
        {
            names.push_back(trimmed(source.substr(begin, i - begin)));
            begin = i + 1;
        }
    }
    names.push_back(trimmed(source.substr(std::min(begin, source.size()))));
    return names;
}

bool isExceptionOnItsWay() noexcept
{
    return std::uncaught_exceptions() > 0;
}

} // namespace

std::string infosOfThisThread()
{
    std::string all;
    if (isTelling)
    {
        return all;
    }
    CTelling const telling;
    for (std::string const& text : textsOfScopes())
    {
        all += all.empty() ? "" : "\n";
        all += text;
    }
    return all;
}

void forgetLeftInfos() noexcept
{
    if (leftByStep.infos > 0)
    {
        leftTexts.clear();
        leftByStep.infos = 0;
    }
}

CHiddenInfos::CHiddenInfos() noexcept : m_hidden(std::exchange(innermost, nullptr))
{
}

CHiddenInfos::~CHiddenInfos()
{
    innermost = static_cast<detail::CInfoScope const*>(m_hidden);
}

namespace detail
{

CInfoScope::CInfoScope(Write* write, void const* parts) noexcept
    : m_write(write), m_parts(parts), m_outer(innermost), m_exceptions(std::uncaught_exceptions())
{
    if (!isExceptionOnItsWay())
    {
        forgetLeftInfos();
    }
    innermost = this;
}

CInfoScope::~CInfoScope()
{
    innermost = m_outer;
    if (std::uncaught_exceptions() > m_exceptions)
    {
        try
        {
            CTelling const telling;
            leftTexts.push_back(makeText());
            leftByStep.infos = leftTexts.size();
        }
        catch (std::exception const&)
        {
            // Out of memory; the exception that is propagating is more important.
        }
    }
    else if (!isExceptionOnItsWay())
    {
        forgetLeftInfos();
    }
}

std::string CInfoScope::makeText() const
{
    CMessageWriter out;
    m_write(out, m_parts);
    return out.written();
}

std::string_view nameOfCapture(std::string_view names, std::size_t index, std::size_t count)
{
    for (std::string_view const brackets : {"([{)]}", "([{<)]}>"})
    {
        Names const all = splitNames(names, brackets);
        if (all.size() == count)
        {
            return all[index];
        }
    }
    return names;
}

} // namespace detail

} // namespace qix
