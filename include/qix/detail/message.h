#pragma once

#include <qix/detail/describe.h>
#include <qix/detail/logLine.h>
#include <qix/detail/narrowText.h>
#include <qix/export.h>
#include <zel/P.h>

#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>

class wxString;

namespace qix::detail
{

class CMessageStream;

/// Puts a message together as a stream does, for files that include none.
///
/// What throws while it is written leaves that in the message instead.
class QIX_EXPORT CMessageWriter
{
public:
    CMessageWriter();
    CMessageWriter(CMessageWriter const&) = delete;
    CMessageWriter& operator=(CMessageWriter const&) = delete;
    ~CMessageWriter();

    void text(std::string_view bytes);
    void text(std::wstring_view characters);
    void text(wxString const& characters);
    void number(bool value);
    void number(long long value);
    void number(unsigned long long value);
    void number(float value);
    void number(double value);
    void number(long double value);

    /// What \p write puts into the message's own stream, the settings of which last.
    void streamed(void (*write)(std::ostream& stream, void const* object), void const* object);

    /// A value as a failed check shows it.
    void described(ValueRef value);

    void manipulate(std::ostream& (*manipulator)(std::ostream&));
    void manipulate(std::ios_base& (*manipulator)(std::ios_base&));

    /// What has been written.
    std::string written() const;

private:
    zel::P<CMessageStream> m_stream;
};

/// True for numbers that a stream can write; bytes are among them.
template <typename T>
constexpr bool isNumber = std::is_arithmetic_v<T> && !isCharacter<T> && !isInt128<T>;

template <typename T>
void writeNumber(CMessageWriter& out, T value)
{
    if constexpr (std::is_floating_point_v<T> || std::is_same_v<T, bool>)
    {
        out.number(value);
    }
    else if constexpr (std::is_signed_v<T>)
    {
        out.number(static_cast<long long>(value));
    }
    else
    {
        out.number(static_cast<unsigned long long>(value));
    }
}

/// Writes an object that is no text: into a stream if there is an operator for that, and otherwise
/// as a failed check shows it.
template <typename T>
void writeObject(CMessageWriter& out, T const& value)
{
    if constexpr (!fulfils<T, DescribeTrait> && fulfils<T, StreamTrait> && !std::is_pointer_v<T> &&
                  !std::is_null_pointer_v<T>)
    {
        out.streamed(&writeToStream<T>, std::addressof(value));
    }
    else
    {
        out.described({std::addressof(value), &describeValue<T>});
    }
}

/// Writes a part of a message.
template <typename T>
void writeMessage(CMessageWriter& out, T const& value)
{
    if constexpr (isNarrowText<T>)
    {
        out.text(viewOf(value));
    }
    else if constexpr (std::is_base_of_v<wxString, T>)
    {
        out.text(static_cast<wxString const&>(value));
    }
    else if constexpr (isDecodedText<T> || std::is_same_v<T, std::wstring_view>)
    {
        out.text(std::wstring_view(value));
    }
    else if constexpr (std::is_same_v<T, char>)
    {
        out.text(std::string_view(&value, 1));
    }
    else if constexpr (isNumber<std::remove_volatile_t<T>>)
    {
        writeNumber<std::remove_volatile_t<T>>(out, value);
    }
    else
    {
        writeObject(out, value);
    }
}

} // namespace qix::detail
