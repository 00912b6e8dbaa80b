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

/// Calls \p call, and then \p end with how it ended and what it threw, which is null for Ok. What
/// \p end throws for Ok counts as thrown by the call. What is no std::exception is not caught.
template <typename Call, typename End>
void callAndEnd(Call const& call, End const& end)
{
    try
    {
        call();
        end(TestOutcome::Ok, nullptr);
    }
    catch (CTestAbortedException const& e)
    {
        end(TestOutcome::Aborted, &e);
    }
    catch (CTestSkippedException const& e)
    {
        end(TestOutcome::Skipped, &e);
    }
    catch (std::exception const& e)
    {
        end(TestOutcome::Failed, &e);
    }
}

/// What the exception tells of an outcome.
/// \param exception  null when nothing is known but the kind
TestOutcome makeOutcome(TestOutcome::Kind kind, std::exception const* exception);

} // namespace qix
