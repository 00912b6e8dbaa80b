#pragma once

#include <qix/export.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

class wxString;

namespace qix
{

/// Writes values as people read them, for the messages of failed checks.
///
/// A class of your own tells how it is shown by an operation that writes its parts:
/// \code
/// void Interval::describe(qix::CValueWriter& out) const
/// {
///     out.text("from ");
///     out.value(m_begin);
///     out.text(" to ");
///     out.value(m_end);
/// }
/// \endcode
/// It is asked before `operator<<` and whatever else the type offers.
///
/// Its work is done in the library, so that a test file needs no stream and no container header.
/// An object belongs to one thread. All operations throw std::bad_alloc.
class QIX_EXPORT CValueWriter
{
public:
    /// Any value, as best as its type allows.
    template <typename T>
    void value(T const& value);

    /// Text as it stands.
    void text(std::string_view bytes);

    /// Text in quotes, what cannot be printed escaped.
    void quoted(std::string_view bytes);
    /// \copydoc quoted(std::string_view)
    void quoted(std::wstring_view characters);
    /// Text in UTF-16 in quotes, what cannot be printed escaped.
    void quoted(std::u16string_view units);
    /// \copydoc quoted(std::string_view)
    void quoted(std::u32string_view characters);
    /// \copydoc quoted(std::string_view)
    void quoted(wxString const& characters);

    /// `true` or `false`.
    void boolean(bool value);
    /// A character in single quotes.
    void character(char value);
    /// A character in single quotes, or its code point.
    void wideCharacter(char32_t value);
    /// A number.
    void integer(long long value);
    /// A number.
    void unsignedInteger(unsigned long long value);
    /// The number of the sign and the magnitude, whose upper half is \p high.
    void integer128(bool isNegative, unsigned long long high, unsigned long long low);
    /// As many digits as tell the number from all others of its type.
    void floating(float value);
    /// \copydoc floating(float)
    void floating(double value);
    /// \copydoc floating(float)
    void floating(long double value);
    /// An address in hexadecimal, or `nullptr`.
    void address(void const* value);

    /// The \p size bytes from \p object on in hexadecimal.
    void bytes(void const* object, std::size_t size);

    /// The name at \p index of the list of template arguments in \p names, a compiler's text for
    /// a function. False, and nothing is written, when that value has none.
    bool enumerator(std::string_view names, std::size_t index);

    /// That there are \p size bytes, whose values tell nothing.
    void opaque(std::size_t size);

    /// What \p write puts into a stream for \p object.
    void streamed(void (*write)(std::ostream& stream, void const* object), void const* object);

    /// What has been written.
    std::string const& written() const noexcept { return m_written; }

private:
    std::string m_written = {};
};

} // namespace qix

#include <qix/detail/describe.h>
