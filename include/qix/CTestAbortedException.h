#pragma once

#include <qix/export.h>
#include <zel/CError.h>

namespace qix
{

/// Thrown by a test that stops without a verdict: it counts as aborted, not as failed.
class QIX_EXPORT CTestAbortedException : public zel::CError
{
public:
    using zel::CError::CError;

    zel::P<zel::CError> clone() const override { return zel::newObj<CTestAbortedException>(*this); }
    [[noreturn]] void throwClone() const override { throw CTestAbortedException(*this); }
};

} // namespace qix
