#include <zel/P.h>
#include <zel/TList.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace
{

using List = zel::TList<zel::String>;

static_assert(std::is_base_of_v<std::list<zel::String>, List>);
static_assert(std::is_base_of_v<zel::CBase, List>);

TEST(TList, isUsedAsAStack)
{
    List list;
    list.push_back("a");
    list.push_back("b");
    EXPECT_EQ(list.back(), "b");
    list.pop_back();
    EXPECT_EQ(list.back(), "a");
    EXPECT_EQ(list.size(), 1U);
}

TEST(TList, isShared)
{
    zel::P<List> const list = zel::newObj<List>();
    list->push_back("a");
    zel::P<List> const other = list;
    EXPECT_EQ(list->getRefCount(), 2);
    EXPECT_EQ(other->front(), "a");
}

TEST(TList, copyHasAnOwnCountAndOwnElements)
{
    zel::P<List> const list = zel::newObj<List>();
    list->push_back("a");
    list->addRef();
    List copy(*list);
    list->release();
    EXPECT_EQ(copy.getRefCount(), 1);
    copy.front() += "b";
    EXPECT_EQ(copy.front(), "ab");
    EXPECT_EQ(list->front(), "a");
}

} // namespace
