#include <zel/CBadPathError.h>
#include <zel/TList.h>
#include <zel/TPathImpl.h>
#include <zel/filesystem.h>

#include "isDots.h"

#include <algorithm>
#include <cstdint>

namespace zel
{

namespace
{

constexpr wchar_t separator = L'/';

std::int32_t lengthOf(String const& text)
{
    return static_cast<std::int32_t>(text.length());
}

/// Compares the character itself, without the separators, which are safe globals.
bool endsWithSeparator(String const& text)
{
    return !text.empty() && *text.rbegin() == separator;
}

bool isPlainComponent(String const& text, String const& separators)
{
    return !isDots(text) && text.find_first_of(separators) == String::npos;
}

String joinTexts(String const& left, String const& right)
{
    String text(left);
    if (!text.empty() && !endsWithSeparator(text))
    {
        text += *CUnixPathTraits::getSep();
    }
    text += right;
    return text;
}

/// Pushes one component onto the stack.
/// \return false when it climbs above the root
bool pushComponent(TList<String>& components, String const& component, bool hasRoot)
{
    if (component == ".")
    {
        return true;
    }
    if (component != "..")
    {
        components.push_back(component);
        return true;
    }
    if (!components.empty() && components.back() != "..")
    {
        components.pop_back();
        return true;
    }
    if (!hasRoot)
    {
        components.push_back(component);
    }
    return !hasRoot;
}

/// Pushes the components of \p text from \p start on onto the stack.
/// \return false when they climb above the root
bool pushComponents(TList<String>& components, String const& text, std::int32_t start, bool hasRoot)
{
    while (start < lengthOf(text))
    {
        auto const found = text.find(separator, static_cast<std::size_t>(start));
        std::int32_t const end =
            found == String::npos ? lengthOf(text) : static_cast<std::int32_t>(found);
        if (end > start)
        {
            String const component(text.substr(static_cast<std::size_t>(start),
                                               static_cast<std::size_t>(end - start)));
            if (!pushComponent(components, component, hasRoot))
            {
                return false;
            }
        }
        start = end + 1;
    }
    return true;
}

String joinComponents(String const& root, TList<String> const& components)
{
    String text(root);
    for (String const& component : components)
    {
        if (!text.empty() && !endsWithSeparator(text))
        {
            text += separator;
        }
        text += component;
    }
    return text;
}

} // namespace

template <typename Traits>
TPathImpl<Traits>::TPathImpl() = default;

template <typename Traits>
TPathImpl<Traits>::TPathImpl(String const& text) : m_text(text)
{
}

template <typename Traits>
TPathImpl<Traits>::TPathImpl(char const* bytes) : m_text(bytes)
{
}

template <typename Traits>
TPathImpl<Traits>::TPathImpl(String const& text, bool normalized)
    : m_text(text), m_normalized(normalized)
{
}

template <typename Traits>
TPathImpl<Traits>::TPathImpl(TPathImpl const& other) = default;

template <typename Traits>
TPathImpl<Traits>::~TPathImpl() = default;

template <typename Traits>
TPathImpl<Traits> TPathImpl<Traits>::operator<<(TPathImpl const& right) const
{
    if (right.m_text.empty())
    {
        return *this;
    }
    if (Traits::isAbsolute(right.m_text))
    {
        return right;
    }
    bool const staysNormalized =
        m_normalized && isPlainComponent(right.m_text, *Traits::getAllSeps());
    return TPathImpl(joinTexts(m_text, right.m_text), staysNormalized);
}

template <typename Traits>
String TPathImpl<Traits>::textToNormalize(bool makeAbsolute, TPathImpl const& base) const
{
    if (!makeAbsolute || m_text.empty() || Traits::isAbsolute(m_text))
    {
        return m_text;
    }
    TPathImpl const folder =
        base.m_text.empty() ? TPathImpl(getCurrentWorkDirectoryAsString()) : base;
    return (folder << *this).m_text;
}

template <typename Traits>
TPathImpl<Traits> TPathImpl<Traits>::toNormalized(bool makeAbsolute, TPathImpl const& base) const
{
    if (m_normalized)
    {
        return *this;
    }
    String const text = textToNormalize(makeAbsolute, base);
    int keepLength = 0;
    std::int32_t const rootLength = Traits::getRootLength(text, &keepLength);
    bool const hasRoot = rootLength != -1;

    TList<String> components;
    if (!pushComponents(components, text, hasRoot ? rootLength : 0, hasRoot))
    {
        throw CBadPathError(*this);
    }
    String const root =
        hasRoot ? String(text.Left(static_cast<std::size_t>(keepLength))) : String();
    String const result = joinComponents(root, components);
    return TPathImpl(result, makeAbsolute || Traits::isAbsolute(result));
}

template class TPathImpl<CUnixPathTraits>;

} // namespace zel
