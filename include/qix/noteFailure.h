#pragma once

#include <qix/export.h>

#include <string_view>

namespace qix
{

/// Notes a failure as a check does: the running test goes on and fails at its end. By it the
/// failures of other libraries, mocks say, become those of tests. Safe to call from threads that
/// the test has started. Throws CTestFailedException when no test is running.
/// \param file     with \p line, the place that the failure is shown with; null when unknown
/// \param line     see \p file
/// \param message  what has failed, in bytes that are shown as they are
QIX_EXPORT void noteFailure(char const* file, int line, std::string_view message);

} // namespace qix
