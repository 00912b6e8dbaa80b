#pragma once

#include <qix/ITestItem.h>
#include <zel/P.h>

#include "text/CTextHash.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qix
{

/// The index of a node in a CTestTree.
using NodeIndex = std::uint32_t;

/// Stands for the root, which is no node, and for no node at all.
constexpr NodeIndex noNode = 0xFFFFFFFFU;

/// An item and its place.
struct TestNode
{
    zel::P<ITestItem> item; ///< null when a factory returned null
    NodeIndex parent;       ///< noNode for the root's children
    NodeIndex end;          ///< behind the last node below this one
    std::uint32_t depth;    ///< 0 for the root's children
    CTextHash idHash;       ///< of the whole id
    std::size_t component;  ///< where this node's part of the id begins in the text of all parts
    std::size_t componentSize;
    std::size_t idSize;
};

/// All items below the root, each behind its parent and in the order of declaration, with their
/// ids. They are made, and not run.
class CTestTree
{
public:
    /// Throws what getSubItems() of an item throws, and zel::CError when an item contains itself.
    explicit CTestTree(std::vector<zel::P<ITestItem>> const& rootChildren);

    NodeIndex size() const noexcept { return static_cast<NodeIndex>(m_nodes.size()); }
    TestNode const& operator[](NodeIndex node) const { return m_nodes[node]; }

    /// True for an item without children, which is a test.
    bool isLeaf(NodeIndex node) const { return m_nodes[node].end == node + 1; }

    /// The children of a node, or of the root, are firstChild(), then the end of each up to this.
    NodeIndex endOf(NodeIndex node) const { return node == noNode ? size() : m_nodes[node].end; }
    static NodeIndex firstChild(NodeIndex node) { return node == noNode ? 0 : node + 1; }

    std::string idOf(NodeIndex node) const;

    /// The last part of the id.
    std::string_view componentOf(NodeIndex node) const;

    bool hasId(NodeIndex node, std::string_view id) const;

    /// The names from the root's child downwards.
    std::vector<std::string> namesOf(NodeIndex node) const;

    /// Makes \p id the id of this node. It is that of the node in front or of one with the same
    /// parent, or empty for the first of all. Going from node to node by this costs no more than
    /// what differs.
    void moveTo(NodeIndex node, std::string& id) const;

private:
    class CBuilder;

    std::vector<TestNode> m_nodes;
    std::string m_components;
};

/// The name of an item, which may be null.
std::string itemName(ITestItem const* item);

} // namespace qix
