#pragma once

#include <zel/CBase.h>
#include <zel/CProps.h>
#include <zel/P.h>
#include <zel/String.h>

#include <wx/buffer.h>

#include <exception>

namespace zel
{

/// The root of all errors: a std::exception that carries more than its message.
///
/// It can be thrown by value or held by a zel::P. A derived class overrides clone() and
/// throwClone(), so that a copy made through a CError keeps its type. Reading one error on
/// several threads at once is safe.
class ZEL_EXPORT CError : public std::exception, public CBase
{
public:
    /// \param message     what went wrong, for people
    /// \param secondText  more about it; empty when there is nothing to add
    /// \param code        a number for programs; -1 when there is none
    /// \param props       named details
    /// \param cause       the error behind this one, or null; a clone of it is kept
    explicit CError(String const& message, String const& secondText = String(), long long code = -1,
                    CProps const& props = CProps(), CError const* cause = nullptr);

    /// A copy that shares the cause.
    CError(CError const& other);
    CError& operator=(CError const&) = delete;
    ~CError() override;

    /// The message in the encoding of the locale. The text lives as long as the error.
    char const* what() const noexcept override;

    /// A new copy on the heap, owned by the returned pointer alone.
    virtual P<CError> clone() const;

    /// Throws a copy of the error.
    [[noreturn]] virtual void throwClone() const;

    /// The error behind this one, or null.
    virtual P<CError> getCause() const;

    /// What went wrong, for people.
    String const& getMessage() const noexcept { return m_message; }

    /// More about it, or nothing.
    String const& getSecondText() const noexcept { return m_secondText; }

    /// A number for programs; -1 when there is none.
    long long getCode() const noexcept { return m_code; }

    /// Named details.
    CProps const& getProps() const noexcept { return m_props; }

private:
    wxScopedCharTypeBuffer<char> m_narrowMessage;
    String m_message;
    long long m_code;
    CProps m_props;
    String m_secondText;
    P<CError> m_cause;
};

} // namespace zel
