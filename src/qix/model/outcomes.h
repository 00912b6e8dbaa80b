#pragma once

#include <qix/CTestAbortedException.h>
#include <qix/CTestSkippedException.h>
#include <qix/SourceLocation.h>
#include <qix/TestOutcome.h>

#include "model/TScopedThreadValue.h"

#include <exception>

namespace qix
{

/// The exception that ended the test or sub-test which is being reported to the runner.
using CReportedException = TScopedThreadValue<std::exception>;

/// The source location of the sub-test that is being reported to the runner.
using CReportedLocation = TScopedThreadValue<SourceLocation>;

/// Calls \p call. When it throws a std::exception, calls \p whenThrown in the handler, with the
/// outcome that the exception stands for and the exception; others are not caught.
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

/// The outcome that an exception stands for.
/// \param exception  null when nothing is known but the kind
TestOutcome makeOutcome(TestOutcome::Kind kind, std::exception const* exception);

} // namespace qix
