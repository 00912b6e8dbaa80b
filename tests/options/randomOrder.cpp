// Prints the random order of a tree of tests for a few seeds.
#include <qix/CTestItemGroup.h>

#include "selection/CTestTree.h"
#include "selection/testOrder.h"

#include <cstdio>
#include <string>

namespace
{

using qix::NodeIndex;

zel::P<qix::CTestItemGroup> makeGroup(std::string const& name, int levels)
{
    auto group = zel::newObj<qix::CTestItemGroup>(name);
    for (int i = 0; levels > 0 && i < 4; ++i)
    {
        group->addSubItem(makeGroup(name + static_cast<char>('a' + i), levels - 1));
    }
    return group;
}

void print(qix::CTestTree const& tree, qix::TestOrder const& order, NodeIndex parent)
{
    for (NodeIndex const child : order.at(parent))
    {
        std::printf(" %s", tree.idOf(child).c_str());
        if (!tree.isLeaf(child))
        {
            print(tree, order, child);
        }
    }
}

} // namespace

int main()
{
    qix::CTestTree const tree({makeGroup("x", 2), makeGroup("\xC3\xBC y", 2)});
    for (std::uint64_t const seed : {std::uint64_t{0}, std::uint64_t{7}, UINT64_MAX})
    {
        std::printf("%llu:", static_cast<unsigned long long>(seed));
        print(tree, qix::randomOrder(tree, seed), qix::noNode);
        std::puts("");
    }
    return 0;
}
