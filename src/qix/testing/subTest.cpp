#include <qix/detail/subTest.h>
#include <zel/CError.h>

#include "testing/CTestContext.h"
#include "text/decodedText.h"
#include "text/formatLocation.h"

#include <string>

namespace qix::detail
{

void runSubTest(std::string_view name, CFunctionRef row, char const* file, int line)
{
    CTestContext* const run = CTestContext::ofThisThread();
    if (run == nullptr)
    {
        throw zel::CError(decodedText(formatLocation({file, line}) +
                                      ": subTest() was called where no test runs on this thread"));
    }
    run->runSubTest(std::string(name), row, {file, line});
}

} // namespace qix::detail
