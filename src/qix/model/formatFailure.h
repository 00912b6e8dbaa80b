#pragma once

#include <qix/CheckFailure.h>

#include <cstddef>
#include <string>
#include <vector>

namespace qix
{

/// The failure as it is printed.
std::string formatFailure(CheckFailure const& failure);

/// The failures of one test as they are printed.
/// \param failures  those to list, at least one
/// \param count     how many there are
std::string formatFailures(std::vector<CheckFailure> const& failures, std::size_t count);

} // namespace qix
