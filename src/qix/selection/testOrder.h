#pragma once

#include "selection/CTestTree.h"

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

namespace qix
{

/// For each parent, or noNode for the root, its children in the order in which they run; those
/// without an entry run as they were declared.
using TestOrder = std::unordered_map<NodeIndex, std::vector<NodeIndex>>;

/// An order that looks random and is told by the seed alone, on every machine. It depends on the
/// ids and on nothing else, so that two tests keep their order when others are left out.
TestOrder randomOrder(CTestTree const& tree, std::uint64_t seed);

/// Puts what has more weight first, a group by the sum of what is below it; equal ones stay as
/// they were declared.
/// \param weights  one for each node, of which those of tests count
TestOrder orderByWeight(CTestTree const& tree, std::vector<std::uint64_t> weights);

} // namespace qix
