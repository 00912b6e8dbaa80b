#pragma once

#include "selection/CTestTree.h"

#include <string>
#include <vector>

namespace qix
{

/// The ids that a text which is none may have been meant for, the nearest first; three at most.
/// Those count that differ in few characters, and those of the same name elsewhere.
std::vector<std::string> nearestIds(CTestTree const& tree, std::string const& text);

} // namespace qix
