#include <qix/detail/section.h>
#include <zel/CError.h>

#include "testing/CSections.h"
#include "text/decodedText.h"
#include "text/formatLocation.h"

#include <exception>

namespace qix::detail
{

namespace
{

CSections& sectionsOfThisThread(SourceLocation const& location)
{
    CTestContext* const run = CTestContext::ofThisThread();
    if (run == nullptr)
    {
        throw zel::CError(
            decodedText(formatLocation(location) +
                        ": QIX_SECTION was come to where no test runs on this thread"));
    }
    return run->sections();
}

} // namespace

CSectionVisit::CSectionVisit(std::string_view name, char const* file, int line)
    : m_sections(nullptr), m_exceptionCount(std::uncaught_exceptions())
{
    SourceLocation const location = {file, line};
    CSections& sections = sectionsOfThisThread(location);
    if (sections.enter(name, location))
    {
        m_sections = &sections;
    }
}

CSectionVisit::~CSectionVisit() noexcept(false)
{
    if (m_sections != nullptr)
    {
        m_sections->leave(std::uncaught_exceptions() > m_exceptionCount);
    }
}

} // namespace qix::detail
