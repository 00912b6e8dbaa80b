#include "selection/CTestPlan.h"

namespace qix
{

namespace
{

std::string inHexadecimal(std::uint64_t value)
{
    std::string text(16, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit)
    {
        *digit = "0123456789abcdef"[value & 0xFU];
        value >>= 4U;
    }
    return text;
}

} // namespace

CTestPlan::CTestPlan(CTestTree const& tree, std::vector<bool> const& selectedRoots)
    : m_tree(tree), m_flags(tree.size(), 0)
{
    std::size_t root = 0;
    for (NodeIndex begin = 0; begin < tree.size(); begin = tree[begin].end)
    {
        bool const isSelected = selectedRoots[root++];
        for (NodeIndex node = begin; node < tree[begin].end; ++node)
        {
            set(node, Wanted, isSelected);
            set(node, Whole, isSelected);
        }
    }
}

void CTestPlan::set(NodeIndex node, Flag flag, bool value)
{
    unsigned const others = m_flags[node] & ~static_cast<unsigned>(flag);
    m_flags[node] = static_cast<unsigned char>(value ? others | flag : others);
}

void CTestPlan::keep(PatternHits const& hits)
{
    for (NodeIndex node = 0; node < m_tree.size(); ++node)
    {
        bool const isHit = hits.nodes[node] != PatternHits::Nothing;
        set(node, Whole, isWhole(node) && isHit);
        set(node, LetIn, hits.nodes[node] == PatternHits::Named);
        set(node, Wanted, isWanted(node) && (isHit || hits.subTests.count(node) > 0));
    }
    for (auto const& [node, patterns] : hits.subTests)
    {
        set(node, LetIn, isLetIn(node) || !patterns.ids.empty());
    }
    passUp();
}

void CTestPlan::drop(PatternHits const& hits)
{
    for (NodeIndex node = 0; node < m_tree.size(); ++node)
    {
        bool const isHit = hits.nodes[node] != PatternHits::Nothing;
        set(node, Whole, isWhole(node) && !isHit);
        set(node, Wanted, isWanted(node) && !isHit);
    }
    passUp();
}

void CTestPlan::keepTests(std::function<bool(NodeIndex)> const& isKept)
{
    for (NodeIndex node = 0; node < m_tree.size(); ++node)
    {
        if (m_tree.isLeaf(node) && isWanted(node))
        {
            set(node, Wanted, isKept(node));
        }
    }
    passUp();
}

void CTestPlan::letIn(NodeIndex node)
{
    for (; node != noNode; node = m_tree[node].parent)
    {
        set(node, LetIn);
    }
}

/// A group is wanted when anything in it is, and let in when anything in it is let in.
void CTestPlan::passUp()
{
    for (NodeIndex node = m_tree.size(); node-- > 0;)
    {
        if (!m_tree.isLeaf(node))
        {
            set(node, Wanted, false);
        }
    }
    for (NodeIndex node = m_tree.size(); node-- > 0;)
    {
        NodeIndex const parent = m_tree[node].parent;
        if (parent != noNode && isWanted(node))
        {
            set(parent, Wanted);
            set(parent, LetIn, isLetIn(parent) || isLetIn(node));
        }
    }
}

void CTestPlan::applyFilters(Filter const& filter)
{
    for (NodeIndex node = 0; node < m_tree.size(); ++node)
    {
        TestNode const& entry = m_tree[node];
        bool const isParentOut = entry.parent != noNode && isFilteredOut(entry.parent);
        bool const asksFilter = isWanted(node) && !isLetIn(node) && entry.item != nullptr;
        set(node, FilteredOut, isParentOut || (asksFilter && filter(*entry.item)));
    }
}

std::vector<NodeIndex> CTestPlan::listTests() const
{
    std::vector<NodeIndex> tests;
    for (NodeIndex node = 0; node < m_tree.size(); ++node)
    {
        if (m_tree.isLeaf(node) && isWanted(node) && !isFilteredOut(node))
        {
            tests.push_back(node);
        }
    }
    return tests;
}

std::vector<NodeIndex> CTestPlan::listWanted() const
{
    std::vector<NodeIndex> tests;
    for (NodeIndex node = 0; node < m_tree.size(); ++node)
    {
        if (m_tree.isLeaf(node) && isWanted(node))
        {
            tests.push_back(node);
        }
    }
    return tests;
}

std::string digestOf(CTestTree const& tree, std::vector<NodeIndex> const& tests)
{
    CTextHash digest;
    for (NodeIndex const test : tests)
    {
        digest.add(tree[test].idHash.get());
    }
    return inHexadecimal(digest.get());
}

} // namespace qix
