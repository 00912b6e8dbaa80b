#pragma once

#include "selection/CTestTree.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace qix
{

/// What a test took in an earlier run, in microseconds; 0 when that is not known.
using KnownTime = std::function<std::uint64_t(NodeIndex)>;

/// The part of the tests that has this number, from 1. All parts together are all tests, and no
/// test is in two of them; each process that knows the same tests and times finds the same parts.
///
/// They are to take equally long: by the times that are known, and for other tests by the average
/// of their class of duration, or by a guess where no test of that class has a time.
std::vector<NodeIndex> shardOf(CTestTree const& tree, std::vector<NodeIndex> const& tests,
                               KnownTime const& knownTime, std::uint64_t number,
                               std::uint64_t count);

} // namespace qix
