#pragma once

#include "selection/CTestTree.h"
#include "selection/TestPatterns.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace qix
{

/// Which items of a tree are to run, before the filters of a runner are asked.
class CTestPlan
{
public:
    /// Tells whether the filters leave an item out.
    using Filter = std::function<bool(ITestItem const&)>;

    /// Everything that is below the selected children of the root.
    /// \param tree           outlives the plan
    /// \param selectedRoots  one flag for each child of the root
    CTestPlan(CTestTree const& tree, std::vector<bool> const& selectedRoots);

    /// Keeps what the patterns find. Tests whose ids are named are let in by all filters.
    void keep(PatternHits const& hits);

    /// Drops what the patterns find.
    void drop(PatternHits const& hits);

    /// Keeps those tests for which the function is true.
    void keepTests(std::function<bool(NodeIndex)> const& isKept);

    /// Lets a test, or all of a group, in through all filters.
    void letIn(NodeIndex node);

    /// Asks the filters about everything that is wanted.
    void applyFilters(Filter const& filter);

    bool isWanted(NodeIndex node) const { return has(node, Wanted); }

    /// True when also that of the item is wanted which the tree does not know of.
    bool isWhole(NodeIndex node) const { return has(node, Whole); }

    /// True when the filters are not asked.
    bool isLetIn(NodeIndex node) const { return has(node, LetIn); }

    /// True when the filters leave out the item, or one that it is in.
    bool isFilteredOut(NodeIndex node) const { return has(node, FilteredOut); }

    /// The tests that run unless something else stops them, in the order of declaration.
    std::vector<NodeIndex> listTests() const;

    /// All that is wanted and has no children, filtered out or not.
    std::vector<NodeIndex> listWanted() const;

    CTestTree const& tree() const noexcept { return m_tree; }

private:
    enum Flag : unsigned char
    {
        Wanted = 1,
        Whole = 2,
        LetIn = 4,
        FilteredOut = 8
    };

    bool has(NodeIndex node, Flag flag) const { return (m_flags[node] & flag) != 0; }
    void set(NodeIndex node, Flag flag, bool value = true);
    void passUp();

    CTestTree const& m_tree;
    std::vector<unsigned char> m_flags;
};

/// A digest of the ids of these tests in their order, in hexadecimal digits.
std::string digestOf(CTestTree const& tree, std::vector<NodeIndex> const& tests);

} // namespace qix
