#pragma once

#include "selection/CGlob.h"
#include "selection/CTestTree.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace qix
{

/// Patterns that go on below one test, and so name its sub-tests.
struct SubTestPatterns
{
    std::vector<std::string> ids;
    std::vector<CGlob> globs;
    std::vector<std::size_t> numbers; ///< which of all patterns those are, ids first
};

/// What patterns find in a tree.
struct PatternHits
{
    enum Hit : unsigned char
    {
        Nothing,
        Found, ///< by a pattern with a star, or as a part of a group that is found
        Named  ///< by its whole id
    };

    std::vector<Hit> nodes; ///< one for each node of the tree
    std::unordered_map<NodeIndex, SubTestPatterns> subTests;
    std::vector<std::string> patterns; ///< as ids are written
    std::vector<bool> hasMatched;      ///< one for each pattern, those for sub-tests among them
};

/// Looks for all patterns at once. Takes time by the sizes of the tree and of the patterns, and
/// for each pattern with a star once more by the size of the tree.
PatternHits findPatterns(CTestTree const& tree, std::vector<std::string> const& patterns);

} // namespace qix
