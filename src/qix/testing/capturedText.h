#pragma once

#include <string>

namespace qix
{

/// The captured operands of the check that is failing on this thread, as text. Clears them.
std::string takeCapturedText();

/// Sets the text of the captured operands of the check that is failing on this thread.
void setCapturedText(std::string text);

} // namespace qix
