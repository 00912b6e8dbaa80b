#include <qix/log.h>
#include <zel/CError.h>
#include <zel/String.h>

#include "testing/CTestContext.h"
#include "text/decodedText.h"

namespace qix::detail
{

void logBytes(std::string_view line)
{
    logText(decodedText(line));
}

void logText(zel::String const& line)
{
    if (!CTestContext::logInCurrent(line))
    {
        throw zel::CError("log() was called while no test is running");
    }
}

} // namespace qix::detail
