#pragma once

#include <string>

namespace qix
{

/// The type of the exception being handled and, when it has one, its message.
std::string currentExceptionText();

} // namespace qix
