#pragma once

#include <qix/export.h>
#include <zel/CError.h>

namespace qix
{

/// Thrown by a test that does not apply here: it counts as skipped, not as failed.
class QIX_EXPORT CTestSkippedException : public zel::CError
{
public:
    /// The message is "Test skipped".
    CTestSkippedException() : zel::CError("Test skipped", zel::String(), -1, zel::CProps(), nullptr)
    {
    }

    zel::P<zel::CError> clone() const override { return zel::newObj<CTestSkippedException>(*this); }
    [[noreturn]] void throwClone() const override { throw CTestSkippedException(*this); }
};

} // namespace qix
