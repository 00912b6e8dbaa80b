#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qix
{

/// Adds the text in its quotes. A byte that is no valid UTF-8 becomes "[NON-UTF-8-BYTE-0xFF]", so
/// that it can be seen. A text that has "[NON-UTF-8-BYTE-0x" itself gets its "[" written in the
/// same way, so that what was meant can be told.
void appendJsonText(std::string& json, std::string_view text);

/// Writes JSON into a text, without line ends or blanks between the parts. Valid UTF-8 comes out
/// of all bytes, in every locale.
///
/// Who calls cares for the structure: a key in front of each value in an object, and an end for
/// each begin.
class CJsonWriter
{
public:
    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }

    /// The name of the value that follows: up to 30 letters and digits.
    void key(std::string_view name);

    /// Members of an object, or elements of an array, that have been written already.
    void written(std::string_view json);

    /// A text, as by appendJsonText().
    void value(std::string_view text);

    void value(char const* text) { value(std::string_view(text)); }
    void value(std::uint64_t number);
    void value(bool isTrue);

    /// Seconds, with six digits behind the point.
    void seconds(std::uint64_t microseconds);

    /// What has been written so far.
    std::string const& text() const noexcept { return m_text; }

    /// Begins anew, and keeps the memory.
    void clear() noexcept;

    /// What has been written so far, which is taken out: the writer begins anew.
    std::string take();

    /// The same. Both texts keep their memory, so that nothing is taken from the heap when this is
    /// repeated.
    void moveTo(std::string& text);

private:
    void begin(char bracket);
    void end(char bracket);
    void separate();

    std::string m_text;
    bool m_needsComma = false;
};

} // namespace qix
