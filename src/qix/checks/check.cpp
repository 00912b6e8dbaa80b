#include <qix/CTestAbortedException.h>
#include <qix/CTestSkippedException.h>
#include <qix/detail/check.h>
#include <qix/noteFailure.h>

#include "testing/CTestContext.h"
#include "text/decodedText.h"
#include "text/exceptionText.h"
#include "text/formatLocation.h"
#include "text/withIndentedLines.h"

#include <string>
#include <utility>

namespace qix::detail
{

namespace
{

/// What the check that is failing on this thread has to tell beside its expression.
thread_local std::string keptText;

void writeValue(CValueWriter& out, ValueRef const& value)
{
    try
    {
        value.describe(out, value.object);
    }
    catch (std::exception const&)
    {
        out.text("<writing it threw " + currentExceptionText() + ">");
    }
}

std::string takeKeptText()
{
    return std::exchange(keptText, std::string());
}

std::string failureText(char const* file, int line, char const* check)
{
    std::string text = formatLocation({file, line}) + ": " + check + " failed";
    std::string const kept = takeKeptText();
    if (!kept.empty())
    {
        text += "\n    " + kept;
    }
    return text;
}

std::string messageText(char const* file, int line, std::string_view message)
{
    std::string const place = file == nullptr ? std::string() : formatLocation({file, line}) + ": ";
    return place + withIndentedLines(std::string(message));
}

void noteOrThrow(std::string const& failure)
{
    if (!CTestContext::noteInCurrent(failure))
    {
        throw CTestFailedException(failure + "\n    outside of any running test");
    }
}

[[noreturn]] void noteAndThrow(std::string const& failure)
{
    noteOrThrow(failure);
    throw CRequirementFailedException(failure);
}

} // namespace

void captureOperands(ValueRef const& left, char const* comparison, ValueRef const& right)
{
    CValueWriter out;
    out.text("with ");
    writeValue(out, left);
    out.text(" ");
    out.text(comparison);
    out.text(" ");
    writeValue(out, right);
    keptText = withIndentedLines(out.written());
}

void captureOperand(ValueRef const& value)
{
    CValueWriter out;
    out.text("with ");
    writeValue(out, value);
    keptText = withIndentedLines(out.written());
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
    noteOrThrow(failureText(file, line, check));
}

void failRequirement(char const* file, int line, char const* check)
{
    noteAndThrow(failureText(file, line, check));
}

void failWithBytes(char const* file, int line, std::string_view message)
{
    noteAndThrow(messageText(file, line, message));
}

void failWithText(char const* file, int line, zel::String const& message)
{
    failWithBytes(file, line, message.toCPSafe());
}

void skip()
{
    throw CTestSkippedException();
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
    detail::noteOrThrow(detail::messageText(file, line, message));
}

} // namespace qix
