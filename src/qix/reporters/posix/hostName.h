#pragma once

#include <string>

namespace qix
{

/// The name of this machine; empty when it has none.
std::string hostName();

} // namespace qix
