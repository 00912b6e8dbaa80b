#pragma once

#include <string>

namespace qix
{

/// The captured operands of the check that is failing on this thread, as text. Clears them.
std::string takeKeptText();

/// Sets the text of the captured operands of the check that is failing on this thread.
void keepText(std::string text);

} // namespace qix
