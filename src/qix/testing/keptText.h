#pragma once

#include <string>

namespace qix
{

/// What the check that is failing on this thread tells beside its expression; it is kept no longer.
std::string takeKeptText();

/// Keeps what the check that is failing on this thread is going to tell beside its expression.
void keepText(std::string text);

} // namespace qix
