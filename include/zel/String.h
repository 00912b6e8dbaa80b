#pragma once

#include <zel/CBase.h>

#include <wx/string.h>

#include <string>
#include <type_traits>

class wxMBConv;

namespace zel
{

// Nobody deletes it as the base class without a virtual destructor, of which -Weffc++ warns.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// Text: wide characters, one code point each, with the operations of wxString.
///
/// Bytes that become text (`char`, `char const*`, `std::string`) are read as ISO-8859-1: each
/// byte is the character of that code, in every locale. Text becomes bytes at the edges of the
/// program, with toCPSafe().
///
/// A String may be read by several threads at once only through its own operations; those of
/// wxString that convert to narrow text write a cache inside the object.
class ZEL_EXPORT String : public wxString, public CBase
{
public:
    /// Empty.
    String();

    /// @{
    /// Copies the characters; null gives an empty string.
    String(String const& other);
    String(wxString const& text);
    String(wxCStrData const& text);
    String(wchar_t const* text);
    /// @}

    /// Reads \p bytes up to the NUL as ISO-8859-1; null gives an empty string.
    String(char const* bytes);

    /// Reads all of \p bytes as ISO-8859-1, NUL bytes included.
    String(std::string const& bytes);

    /// Replaces the characters.
    String& operator=(String const& other) = default;

    ~String() override;

    using wxString::operator+=;

    /// @{
    /// Adds text behind the own; bytes are read as the constructors read them.
    String& operator+=(String const& text);
    String& operator+=(wxString const& text);
    String& operator+=(wchar_t const* text);
    String& operator+=(char const* bytes);
    String& operator+=(std::string const& bytes);
    String& operator+=(char byte);
    /// @}

    /// The text in the encoding of the locale that the environment names. Characters that it
    /// lacks are replaced as toEncodingSafe() does. Throws std::bad_alloc only.
    std::string toCPSafe() const;

    /// The text in the given encoding; each character that it lacks becomes a question mark.
    /// Throws std::bad_alloc only.
    /// \param conv      the encoding; one whose characters stand for themselves, without the shift
    ///                  states that a single character would not reset
    /// \param problems  receives the number of replaced characters; may be null
    std::string toEncodingSafe(wxMBConv const& conv, int* problems) const;
};

#pragma GCC diagnostic pop

/// What can stand beside a String in an expression: any text that a String can be made from.
template <typename T>
using EnableIfText = std::enable_if_t<std::is_convertible_v<T const&, String>>;

/// The same without String and what derives from it, for which there is an operator already.
template <typename T>
using EnableIfTextButNotString =
    std::enable_if_t<std::is_convertible_v<T const&, String> && !std::is_base_of_v<String, T>>;

/// @{
/// One text behind the other; bytes are read as the constructors of String read them.
template <typename Right, typename = EnableIfText<Right>>
String operator+(String const& left, Right const& right)
{
    // Not a cast, which would take a wxString for a String instead of converting it.
    String const& text = right;
    String sum(left);
    sum += text;
    return sum;
}

template <typename Left, typename = EnableIfTextButNotString<Left>>
String operator+(Left const& left, String const& right)
{
    String sum(left);
    sum += right;
    return sum;
}

ZEL_EXPORT String operator+(String const& left, char right);
ZEL_EXPORT String operator+(char left, String const& right);
/// @}

/// @{
/// Compares character by character; bytes are read as the constructors of String read them.
template <typename Right, typename = EnableIfText<Right>>
bool operator==(String const& left, Right const& right)
{
    String const& text = right;
    return left.compare(text) == 0;
}

template <typename Left, typename = EnableIfTextButNotString<Left>>
bool operator==(Left const& left, String const& right)
{
    return right == left;
}

template <typename Right, typename = EnableIfText<Right>>
bool operator!=(String const& left, Right const& right)
{
    return !(left == right);
}

template <typename Left, typename = EnableIfTextButNotString<Left>>
bool operator!=(Left const& left, String const& right)
{
    return !(right == left);
}
/// @}

} // namespace zel
