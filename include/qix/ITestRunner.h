#pragma once

#include <qix/ITestItem.h>
#include <qix/export.h>
#include <zel/IBase.h>

#include <exception>
#include <string>

namespace qix
{

/// Whoever runs test items and is told how they end.
///
/// Each beginSubTest() that returned true is followed by exactly one of the operations that end
/// a sub-test, the innermost first. Everything is called on the thread of the run.
class QIX_EXPORT ITestRunner : public virtual zel::IBase
{
public:
    /// Runs one item with all its bookkeeping: filters, progress, log, outcome.
    virtual void runTestItem(ITestItem* item) = 0;

    /// Announces a sub-test.
    /// \return true when the caller runs the sub-test now and reports its end; false when it must
    ///         not run it: it has been counted as skipped then, and no end follows
    virtual bool beginSubTest(std::string const& name, ITestItem::Duration duration,
                              bool isInteractive, bool containsAnyInteractive) = 0;

    /// The sub-test that was begun last has failed, for the reason that \p e tells.
    virtual void endSubTest_Failed(std::exception const& e) = 0;

    /// The sub-test that was begun last has stopped without a verdict.
    virtual void endSubTest_Aborted() = 0;

    /// The sub-test that was begun last does not apply here.
    virtual void endSubTest_Skipped() = 0;

    /// The sub-test that was begun last has succeeded.
    virtual void endSubTest_Success() = 0;
};

} // namespace qix
