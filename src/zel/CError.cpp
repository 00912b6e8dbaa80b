#include <zel/CError.h>

#include "FreeDeleter.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

namespace zel
{

namespace
{

/// The buffer frees its text with free(). Copies of such a buffer share it under a count that is
/// not atomic, so that every error has a buffer of its own.
wxScopedCharTypeBuffer<char> makeBuffer(char const* text, std::size_t length)
{
    std::unique_ptr<char, FreeDeleter> copy(static_cast<char*>(std::malloc(length + 1)));
    if (copy == nullptr)
    {
        throw std::bad_alloc();
    }
    std::memcpy(copy.get(), text, length);
    copy.get()[length] = '\0';
    auto buffer = wxScopedCharTypeBuffer<char>::CreateOwned(copy.get(), length);
    static_cast<void>(copy.release());
    return buffer;
}

wxScopedCharTypeBuffer<char> makeNarrow(String const& message)
{
    std::string const bytes = message.toCPSafe();
    return makeBuffer(bytes.data(), bytes.size());
}

} // namespace

CError::CError(String const& message, String const& secondText, long long code, CProps const& props,
               CError const* cause)
    : m_narrowMessage(makeNarrow(message)),
      m_message(message),
      m_code(code),
      m_props(props),
      m_secondText(secondText),
      m_cause(cause == nullptr ? P<CError>() : cause->clone())
{
}

CError::CError(CError const& other)
    : std::exception(other),
      CBase(other),
      m_narrowMessage(makeBuffer(other.m_narrowMessage.data(), other.m_narrowMessage.length())),
      m_message(other.m_message),
      m_code(other.m_code),
      m_props(other.m_props),
      m_secondText(other.m_secondText),
      m_cause(other.m_cause)
{
}

CError::~CError() = default;

char const* CError::what() const noexcept
{
    return m_narrowMessage.data();
}

P<CError> CError::clone() const
{
    return newObj<CError>(*this);
}

void CError::throwClone() const
{
    throw CError(*this);
}

P<CError> CError::getCause() const
{
    return m_cause;
}

} // namespace zel
