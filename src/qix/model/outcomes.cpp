#include "model/outcomes.h"

#include <qix/CTestFailedException.h>
#include <qix/CTestSkippedWithReasonException.h>

#include "text/exceptionText.h"
#include "text/messageOf.h"

namespace qix
{

namespace
{

std::vector<CheckFailure> failuresOf(std::exception const& exception)
{
    if (auto const* const failed = dynamic_cast<CTestFailedException const*>(&exception))
    {
        return failed->getFailures();
    }
    return {{"", 0, "", exceptionText(exception)}};
}

zel::String reasonOf(std::exception const& exception)
{
    if (auto const* const aborted = dynamic_cast<CTestAbortedException const*>(&exception))
    {
        return aborted->getMessage();
    }
    auto const* const skipped = dynamic_cast<CTestSkippedWithReasonException const*>(&exception);
    return skipped != nullptr ? skipped->getReason() : zel::String();
}

} // namespace

TestOutcome makeOutcome(TestOutcome::Kind kind, std::exception const* exception)
{
    TestOutcome outcome;
    outcome.kind = kind;
    if (kind == TestOutcome::Ok || exception == nullptr)
    {
        return outcome;
    }
    outcome.message = messageOf(*exception);
    if (kind == TestOutcome::Failed)
    {
        outcome.failures = failuresOf(*exception);
    }
    else
    {
        outcome.reason = reasonOf(*exception);
    }
    return outcome;
}

} // namespace qix
