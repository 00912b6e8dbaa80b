#include <qix/CTestAbortedException.h>
#include <qix/CTestSkippedWithReasonException.h>
#include <qix/detail/check.h>
#include <qix/detail/matching.h>

#include "testing/capturedText.h"
#include "testing/infos.h"
#include "text/decodedText.h"
#include "text/describeSafely.h"
#include "text/exceptionText.h"
#include "text/forcedUnwind.h"

#include <string>

namespace qix::detail
{

namespace
{

/// Beyond this length in bytes a difference between two values is hard to see.
constexpr std::size_t longLine = 80;

QIX_CATCHES_FORCED_UNWIND void writeExplanation(CValueWriter& out, ValueRef left, ValueRef right,
                                                Explain* explain)
{
    if (explain == nullptr)
    {
        return;
    }
    CValueWriter explanation;
    try
    {
        explain(explanation, left.object, right.object, out.written().size() > longLine);
    }
    catch (abi::__forced_unwind const&)
    {
        throw;
    }
    catch (...)
    {
        explanation.text("<comparing parts of it threw " + currentExceptionText() + ">");
    }
    out.text(explanation.written().empty() ? "" : "\n");
    out.text(explanation.written());
}

std::string withoutLineEnds(std::string_view text)
{
    return std::string(text.substr(0, text.find_last_not_of('\n') + 1));
}

} // namespace

void captureOperands(ValueRef left, char const* comparison, ValueRef right, Explain* explain)
{
    CValueWriter out;
    out.text("with ");
    describeSafely(out, left);
    out.text(" ");
    out.text(comparison);
    out.text(" ");
    describeSafely(out, right);
    writeExplanation(out, left, right, explain);
    setCapturedText(withoutLineEnds(out.written()));
}

void captureOperand(ValueRef value)
{
    CValueWriter out;
    out.text("with ");
    describeSafely(out, value);
    setCapturedText(withoutLineEnds(out.written()));
}

void captureMatch(ValueRef value, ValueRef match)
{
    CValueWriter out;
    out.text("with ");
    describeSafely(out, value);
    out.text("\nexpected: ");
    describeSafely(out, match);
    setCapturedText(withoutLineEnds(out.written()));
}

void captureThrownMatch(ValueRef match)
{
    CValueWriter out;
    out.text("it threw " + currentExceptionText() + "\nexpected the message: ");
    describeSafely(out, match);
    setCapturedText(withoutLineEnds(out.written()));
}

std::string messageOfException()
{
    return currentMessage();
}

void captureException()
{
    setCapturedText("it threw " + currentExceptionText());
}

void forgetException() noexcept
{
    forgetLeftInfos();
}

void captureNothingThrown()
{
    setCapturedText("nothing was thrown");
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
