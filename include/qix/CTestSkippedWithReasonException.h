#pragma once

#include <qix/CTestSkippedException.h>
#include <qix/export.h>
#include <zel/String.h>

namespace qix
{

/// Thrown by a test that does not apply here and says why.
class QIX_EXPORT CTestSkippedWithReasonException : public CTestSkippedException
{
public:
    /// \param reason  why, for people; the message stays "Test skipped"
    explicit CTestSkippedWithReasonException(zel::String const& reason) : m_reason(reason) {}

    /// Why, as it was given.
    zel::String const& getReason() const noexcept { return m_reason; }

    zel::P<zel::CError> clone() const override
    {
        return zel::newObj<CTestSkippedWithReasonException>(*this);
    }
    [[noreturn]] void throwClone() const override { throw CTestSkippedWithReasonException(*this); }

private:
    zel::String m_reason;
};

} // namespace qix
