#include "text/describeSafely.h"

#include "text/exceptionText.h"
#include "text/forcedUnwind.h"
#include "text/withIndentedLines.h"

namespace qix
{

QIX_CATCHES_FORCED_UNWIND void describeSafely(CValueWriter& out, detail::ValueRef value)
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
        out.text(threwText());
    }
}

std::string threwText()
{
    return "<writing it threw " + withIndentedLines(currentExceptionText()) + ">";
}

} // namespace qix
