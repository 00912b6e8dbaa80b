#pragma once

#include <qix/CTestAbortedException.h>
#include <qix/CTestSkippedException.h>
#include <qix/SourceLocation.h>
#include <qix/TestOutcome.h>

#include "model/TScopedThreadValue.h"

#include <exception>

namespace qix
{

/// The exception by which the test or sub-test has ended that is being reported to the runner.
using CReportedException = TScopedThreadValue<std::exception>;

/// Where the sub-test is written that is being reported to the runner.
using CReportedLocation = TScopedThreadValue<SourceLocation>;

/// Calls \p call and, when it throws, \p whenThrown with what that makes of it and the exception,
/// which is being handled then. What is no std::exception is not caught.
/// \return  whether the call returned
template <typename Call, typename WhenThrown>
bool catchOutcome(Call const& call, WhenThrown const& whenThrown)
{
    try
    {
        call();
        return true;
    }
    catch (CTestAbortedException const& e)
    {
        whenThrown(TestOutcome::Aborted, e);
    }
    catch (CTestSkippedException const& e)
    {
        whenThrown(TestOutcome::Skipped, e);
    }
    catch (std::exception const& e)
    {
        whenThrown(TestOutcome::Failed, e);
    }
    return false;
}

/// What the exception tells of an outcome.
/// \param exception  null when nothing is known but the kind
TestOutcome makeOutcome(TestOutcome::Kind kind, std::exception const* exception);

} // namespace qix
