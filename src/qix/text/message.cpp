#include <qix/detail/message.h>
#include <zel/CBase.h>
#include <zel/String.h>

#include "text/describeSafely.h"
#include "text/forcedUnwind.h"

#include <sstream>

namespace qix::detail
{

namespace
{

constexpr std::streamsize defaultPrecision = 6;

} // namespace

class CMessageStream : public std::ostringstream, public zel::CBase
{
public:
    /// Writes as many digits as tell the number from all others, unless asked for something else.
    template <typename T>
    void number(T value)
    {
        bool const isPlain =
            (flags() & std::ios_base::floatfield) == 0 && precision() == defaultPrecision;
        if (!isPlain)
        {
            *this << value;
            return;
        }
        CValueWriter shortest;
        shortest.floating(value);
        *this << shortest.written();
    }
};

CMessageWriter::CMessageWriter() : m_stream(zel::newObj<CMessageStream>())
{
    *m_stream << std::boolalpha;
}

CMessageWriter::~CMessageWriter() = default;

void CMessageWriter::text(std::string_view bytes)
{
    *m_stream << bytes;
}

void CMessageWriter::text(std::wstring_view characters)
{
    text(wxString(characters.data(), characters.size()));
}

void CMessageWriter::text(wxString const& characters)
{
    text(std::string_view(zel::String(characters).toCPSafe()));
}

void CMessageWriter::number(bool value)
{
    *m_stream << value;
}

void CMessageWriter::number(long long value)
{
    *m_stream << value;
}

void CMessageWriter::number(unsigned long long value)
{
    *m_stream << value;
}

void CMessageWriter::number(float value)
{
    m_stream->number(value);
}

void CMessageWriter::number(double value)
{
    m_stream->number(value);
}

void CMessageWriter::number(long double value)
{
    m_stream->number(value);
}

QIX_CATCHES_FORCED_UNWIND void CMessageWriter::streamed(void (*write)(std::ostream&, void const*),
                                                        void const* object)
{
    try
    {
        write(*m_stream, object);
    }
    catch (abi::__forced_unwind const&)
    {
        throw;
    }
    catch (...)
    {
        *m_stream << threwText();
    }
    // What could not be written must not keep back what follows.
    m_stream->clear();
}

void CMessageWriter::described(ValueRef value)
{
    CValueWriter out;
    describeSafely(out, value);
    text(std::string_view(out.written()));
}

void CMessageWriter::manipulate(std::ostream& (*manipulator)(std::ostream&))
{
    *m_stream << manipulator;
}

void CMessageWriter::manipulate(std::ios_base& (*manipulator)(std::ios_base&))
{
    *m_stream << manipulator;
}

std::string CMessageWriter::written() const
{
    return m_stream->str();
}

} // namespace qix::detail
