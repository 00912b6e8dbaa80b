#pragma once

#include <qix/detail/subTest.h>

#include <string_view>

namespace qix
{

/// Runs \p row, which takes no arguments, as a sub-test of the running test: one row of a table,
/// say. It has its own outcome, by checks or by what it throws, and may have sub-tests itself.
///
/// A failed row does not stop the next one and does not fail the test around it, as a failed test
/// does not fail its group: one failure is told once. It fails the run. Sections in a row run the
/// row again, as they run a test again. Rows of a short test are short tests; rows of longer ones
/// have no expected duration, and so no progress character.
///
/// Call it on the thread that runs the test: throws zel::CError on others and outside of tests.
/// \param name  the last component of the row's dotted path; what is no text of one line in it is
///              shown escaped
/// \param row   what is called; it is not kept
/// \param file  with \p line, where the call stands, which is told when the row fails
/// \param line  see \p file
template <typename Row>
void subTest(std::string_view name, Row&& row, char const* file = __builtin_FILE(),
             int line = __builtin_LINE())
{
    detail::runSubTest(name, row, file, line);
}

} // namespace qix
