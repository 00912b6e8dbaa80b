#include <qix/CTestAbortedException.h>
#include <qix/CTestFailedException.h>
#include <qix/CTestSkippedWithReasonException.h>
#include <qix/detail/check.h>
#include <qix/noteFailure.h>

#include "testing/CTestContext.h"
#include "text/decodedText.h"
#include "text/exceptionText.h"
#include "text/forcedUnwind.h"
#include "text/withIndentedLines.h"

#include <string>
#include <utility>

namespace qix::detail
{

namespace
{

/// What the check that is failing on this thread has to tell beside its expression.
thread_local std::string keptText;

QIX_CATCHES_FORCED_UNWIND void writeValue(CValueWriter& out, ValueRef value)
{
    try
    {
        value.describe(out, value.object);
    }
    catch (abi::__forced_unwind const&)
    {
        throw;
    }
    catch (...)
    {
        out.text("<writing it threw " + withIndentedLines(currentExceptionText()) + ">");
    }
}

std::string withoutLineEnds(std::string_view text)
{
    return std::string(text.substr(0, text.find_last_not_of('\n') + 1));
}

std::string takeKeptText()
{
    return std::exchange(keptText, std::string());
}

CheckFailure failedCheck(char const* file, int line, char const* check)
{
    return {file, line, check, takeKeptText()};
}

CheckFailure failedWith(char const* file, int line, std::string_view message)
{
    return {file == nullptr ? "" : file, line, "", withoutLineEnds(message)};
}

void noteOrThrow(CheckFailure failure)
{
    if (CTestContext::noteInCurrent(failure))
    {
        return;
    }
    bool const isBelow = !failure.check.empty() && failure.values.empty();
    failure.values += isBelow ? "" : "\n";
    failure.values += "outside of any running test";
    throw CTestFailedException({failure});
}

[[noreturn]] void noteAndThrow(CheckFailure const& failure)
{
    noteOrThrow(failure);
    throw CRequirementFailedException({failure});
}

} // namespace

void captureOperands(ValueRef left, char const* comparison, ValueRef right)
{
    CValueWriter out;
    out.text("with ");
    writeValue(out, left);
    out.text(" ");
    out.text(comparison);
    out.text(" ");
    writeValue(out, right);
    keptText = withoutLineEnds(out.written());
}

void captureOperand(ValueRef value)
{
    CValueWriter out;
    out.text("with ");
    writeValue(out, value);
    keptText = withoutLineEnds(out.written());
}

void captureException()
{
    keptText = "it threw " + currentExceptionText();
}

void captureNothingThrown()
{
    keptText = "nothing was thrown";
}

void noteFailure(char const* file, int line, char const* check)
{
    noteOrThrow(failedCheck(file, line, check));
}

void failRequirement(char const* file, int line, char const* check)
{
    noteAndThrow(failedCheck(file, line, check));
}

void failWithBytes(char const* file, int line, std::string_view message)
{
    noteAndThrow(failedWith(file, line, message));
}

void failWithText(char const* file, int line, zel::String const& message)
{
    failWithBytes(file, line, message.toCPSafe());
}

void skip()
{
    throw CTestSkippedException();
}

void skipWithBytes(std::string_view reason)
{
    skipWithText(decodedText(reason));
}

void skipWithText(zel::String const& reason)
{
    throw CTestSkippedWithReasonException(reason);
}

void abortWithBytes(std::string_view message)
{
    abortWithText(decodedText(message));
}

void abortWithText(zel::String const& message)
{
    throw CTestAbortedException(message);
}

} // namespace qix::detail

namespace qix
{

void noteFailure(char const* file, int line, std::string_view message)
{
    detail::noteOrThrow(detail::failedWith(file, line, message));
}

} // namespace qix
