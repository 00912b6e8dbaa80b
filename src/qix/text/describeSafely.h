#pragma once

#include <qix/CValueWriter.h>
#include <qix/detail/describe.h>

#include <string>

namespace qix
{

/// Describes the value; what that throws is told in its place.
void describeSafely(CValueWriter& out, detail::ValueRef value);

/// What is told in the place of a value that could not be written, of the exception being handled.
std::string threwText();

} // namespace qix
