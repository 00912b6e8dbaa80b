#pragma once

#include <qix/export.h>

#include <string_view>

namespace qix
{
class CSections;
}

namespace qix::detail
{

/// One visit to a section of the running test, from the section's brace to the end of its block.
class QIX_EXPORT CSectionVisit
{
public:
    /// Throws zel::CError where no test runs on this thread.
    CSectionVisit(std::string_view name, char const* file, int line);
    CSectionVisit(CSectionVisit const&) = delete;
    CSectionVisit& operator=(CSectionVisit const&) = delete;

    /// Ends the section, if it has come to its end, and throws what the runner throws then.
    ~CSectionVisit() noexcept(false);

    /// True when the section is to be run now.
    explicit operator bool() const noexcept { return m_sections != nullptr; }

private:
    CSections* m_sections; ///< null when the section is passed by
    int m_exceptionCount;  ///< how many exceptions were leaving something when the visit began
};

} // namespace qix::detail
