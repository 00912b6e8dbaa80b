#pragma once

#include <qix/export.h>

#include <string_view>

namespace qix
{
class CSections;
}

namespace qix::detail
{

/// One pass through a section of the running test: its scope is the block of the section.
class QIX_EXPORT CSectionVisit
{
public:
    /// Throws zel::CError where no test runs on this thread.
    CSectionVisit(std::string_view name, char const* file, int line);
    CSectionVisit(CSectionVisit const&) = delete;
    CSectionVisit& operator=(CSectionVisit const&) = delete;

    /// Ends the section if all in it has run, and lets exceptions of the runner through.
    ~CSectionVisit() noexcept(false);

    /// True when the section is to be run in this pass.
    explicit operator bool() const noexcept { return m_sections != nullptr; }

private:
    CSections* m_sections; ///< null when the section is skipped in this pass
    int m_exceptionCount;  ///< std::uncaught_exceptions() at its beginning
};

} // namespace qix::detail
