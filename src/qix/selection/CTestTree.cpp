#include "selection/CTestTree.h"

#include <zel/CError.h>

#include "guards/posix/runNotes.h"
#include "runner/nullItem.h"
#include "selection/CHashSet.h"
#include "selection/testIds.h"
#include "text/decodedText.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace qix
{

/// Goes down without recursion: trees may be deeper than the stack is.
class CTestTree::CBuilder
{
public:
    explicit CBuilder(CTestTree& tree) : m_tree(tree) {}

    void build(std::vector<zel::P<ITestItem>> const& rootChildren)
    {
        enter(noNode, rootChildren);
        while (!m_levels.empty())
        {
            Level& level = m_levels.back();
            if (level.next == level.items.size())
            {
                leave();
            }
            else
            {
                std::size_t const child = level.next++;
                addChild(level, child);
            }
        }
    }

private:
    struct Component
    {
        std::size_t begin;
        std::size_t size;
        CTextHash idHash;
    };

    /// A parent, some of whose children have been added.
    struct Level
    {
        NodeIndex parent;
        std::vector<zel::P<ITestItem>> items;
        std::vector<Component> components;
        std::size_t next;
    };

    void enter(NodeIndex parent, std::vector<zel::P<ITestItem>> items)
    {
        Level level{parent, std::move(items), {}, 0};
        level.components.reserve(level.items.size());
        m_tree.m_nodes.reserve(roomFor(level.items.size()));
        CTextHash const pathHash = hashOfPathTo(parent);
        for (zel::P<ITestItem> const& item : level.items)
        {
            level.components.push_back(addComponent(item.get(), pathHash));
        }
        numberSiblings(level.components, pathHash);
        m_levels.push_back(std::move(level));
    }

    /// At least doubles the room when it grows.
    std::size_t roomFor(std::size_t count) const
    {
        std::size_t const needed = m_tree.m_nodes.size() + count;
        std::size_t const capacity = m_tree.m_nodes.capacity();
        return needed > capacity ? std::max(needed, 2 * capacity) : capacity;
    }

    /// Of what stands in front of the components of the children.
    CTextHash hashOfPathTo(NodeIndex parent) const
    {
        CTextHash hash;
        if (parent != noNode)
        {
            hash = m_tree.m_nodes[parent].idHash;
            hash.add(".");
        }
        return hash;
    }

    Component addComponent(ITestItem const* item, CTextHash const& pathHash)
    {
        std::string& text = m_tree.m_components;
        std::size_t const begin = text.size();
        appendIdComponent(text, itemName(item));
        return makeComponent(begin, pathHash);
    }

    /// The component that ends the text of all.
    Component makeComponent(std::size_t begin, CTextHash const& pathHash) const
    {
        Component component{begin, m_tree.m_components.size() - begin, pathHash};
        component.idHash.add(textOf(component));
        return component;
    }

    std::string_view textOf(Component const& component) const
    {
        return std::string_view(m_tree.m_components).substr(component.begin, component.size);
    }

    void numberSiblings(std::vector<Component>& components, CTextHash const& pathHash)
    {
        CHashSet hashes(components.size());
        bool const areDifferent = std::all_of(components.begin(), components.end(),
                                              [&](Component const& component)
                                              { return hashes.insert(component.idHash.get()); });
        if (!areDifferent)
        {
            numberEqualOnes(components, pathHash);
        }
    }

    void numberEqualOnes(std::vector<Component>& components, CTextHash const& pathHash)
    {
        std::unordered_map<std::string, std::size_t> counts;
        for (Component& component : components)
        {
            std::string numbered(textOf(component));
            std::size_t const number = ++counts[numbered];
            if (number > 1)
            {
                appendSiblingNumber(numbered, number);
                std::size_t const begin = m_tree.m_components.size();
                m_tree.m_components += numbered;
                component = makeComponent(begin, pathHash);
            }
        }
    }

    void addChild(Level& level, std::size_t child)
    {
        NodeIndex const index = m_tree.size();
        ITestItem* const item = level.items[child].get();
        m_tree.m_nodes.push_back(
            makeNode(level.parent, std::move(level.items[child]), level.components[child]));
        if (item == nullptr)
        {
            return;
        }
        noteTestBegin(textOf(level.components[child]));
        item->getSubItems(m_children);
        if (m_children.empty())
        {
            noteTestEnd();
            return;
        }
        throwIfInsideItself(index);
        enter(index, std::exchange(m_children, {}));
    }

    TestNode makeNode(NodeIndex parent, zel::P<ITestItem> item, Component const& component) const
    {
        std::uint32_t depth = 0;
        std::size_t idSize = component.size;
        if (parent != noNode)
        {
            TestNode const& above = m_tree.m_nodes[parent];
            depth = above.depth + 1;
            idSize += above.idSize + 1;
        }
        return {std::move(item),  parent,          m_tree.size() + 1, depth,
                component.idHash, component.begin, component.size,    idSize};
    }

    void throwIfInsideItself(NodeIndex node)
    {
        if (!m_path.insert(m_tree.m_nodes[node].item.get()).second)
        {
            throw zel::CError(decodedText("the test item \"" +
                                          itemName(m_tree.m_nodes[node].item.get()) +
                                          "\" contains itself"));
        }
    }

    void leave()
    {
        NodeIndex const parent = m_levels.back().parent;
        if (parent != noNode)
        {
            m_tree.m_nodes[parent].end = m_tree.size();
            m_path.erase(m_tree.m_nodes[parent].item.get());
            noteTestEnd();
        }
        m_levels.pop_back();
    }

    CTestTree& m_tree;
    std::vector<Level> m_levels;
    std::vector<zel::P<ITestItem>> m_children;   ///< of the item that is being asked for them
    std::unordered_set<ITestItem const*> m_path; ///< the parents of all levels
    CNotedMaking const m_noted;
};

CTestTree::CTestTree(std::vector<zel::P<ITestItem>> const& rootChildren)
{
    CBuilder(*this).build(rootChildren);
}

std::string_view CTestTree::componentOf(NodeIndex node) const
{
    return std::string_view(m_components)
        .substr(m_nodes[node].component, m_nodes[node].componentSize);
}

std::string CTestTree::idOf(NodeIndex node) const
{
    std::string id(m_nodes[node].idSize, '.');
    for (; node != noNode; node = m_nodes[node].parent)
    {
        std::string_view const component = componentOf(node);
        std::copy(component.begin(), component.end(),
                  id.begin() +
                      static_cast<std::ptrdiff_t>(m_nodes[node].idSize - component.size()));
    }
    return id;
}

bool CTestTree::hasId(NodeIndex node, std::string_view id) const
{
    return m_nodes[node].idSize == id.size() && idOf(node) == id;
}

std::vector<std::string> CTestTree::namesOf(NodeIndex node) const
{
    std::vector<std::string> names;
    for (; node != noNode; node = m_nodes[node].parent)
    {
        names.push_back(itemName(m_nodes[node].item.get()));
    }
    std::reverse(names.begin(), names.end());
    return names;
}

void CTestTree::moveTo(NodeIndex node, std::string& id) const
{
    NodeIndex const parent = m_nodes[node].parent;
    id.resize(parent == noNode ? 0 : m_nodes[parent].idSize);
    id += parent == noNode ? "" : ".";
    id += componentOf(node);
}

std::string itemName(ITestItem const* item)
{
    return item == nullptr ? nullItemName : item->getName();
}

} // namespace qix
