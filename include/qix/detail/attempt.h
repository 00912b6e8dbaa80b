#pragma once

#include <qix/detail/check.h>
#include <qix/detail/matching.h>
#include <qix/detail/passedCheck.h>

namespace qix::detail
{

/// A loop around the statement of a check for exceptions: the first iteration evaluates the
/// statement, and a second one the message if the check has failed.
class CAttempt
{
public:
    /// True before the statement, and once more when the check has failed.
    bool goesOn() const noexcept { return !m_hasBegun || m_hasFailed; }

    /// True for the statement, false for the message.
    bool begins() noexcept
    {
        bool const isFirst = !m_hasBegun;
        m_hasBegun = true;
        m_hasFailed = false;
        return isFirst;
    }

    /// Notes that the statement has not thrown.
    void setReturned() noexcept { m_hasReturned = true; }

    /// Fails unless something was thrown.
    void expectThrown()
    {
        if (m_hasReturned)
        {
            captureNothingThrown();
            m_hasFailed = true;
        }
    }

    /// Fails unless the exception that is being handled has the message.
    template <typename Expected>
    void expectMessage(Expected const& expected)
    {
        m_hasFailed = !isThrownWith(expected);
        if (!m_hasFailed)
        {
            forgetException();
        }
    }

    /// Fails with the exception that is being handled.
    void failWithException()
    {
        captureException();
        m_hasFailed = true;
    }

    /// Ends the attempt in front of the message.
    void end(char const* file, int line) const noexcept
    {
        if (!m_hasFailed)
        {
            notePassedCheck(file, line);
        }
    }

private:
    bool m_hasBegun = false;
    bool m_hasReturned = false;
    bool m_hasFailed = false;
};

} // namespace qix::detail
