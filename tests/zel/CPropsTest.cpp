#include <zel/CProps.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace
{

using zel::CProps;
using zel::String;

std::vector<String> namesOf(CProps const& props)
{
    std::vector<String> names;
    for (auto const& [name, value] : props)
    {
        names.push_back(name);
    }
    return names;
}

TEST(CProps, isEmptyByDefault)
{
    CProps const props;
    EXPECT_TRUE(props.isEmpty());
    EXPECT_TRUE(props.begin() == props.end());
}

TEST(CProps, givesBackWhatWasSet)
{
    CProps props;
    props.set("path", "/tmp");
    EXPECT_FALSE(props.isEmpty());
    EXPECT_EQ(props.get("path", "none"), "/tmp");
    EXPECT_EQ(props.get("Path", "none"), "none");
}

TEST(CProps, setReplaces)
{
    CProps props;
    props.set("a", "1");
    props.set("a", "2");
    EXPECT_EQ(props.get("a", ""), "2");
    EXPECT_EQ(namesOf(props).size(), 1u);
}

TEST(CProps, isOrderedByName)
{
    CProps props;
    props.set(L"\u00fc", "");
    props.set("b", "");
    props.set("a", "");
    EXPECT_THAT(namesOf(props), testing::ElementsAre(String("a"), String("b"), String(L"\u00fc")));
}

TEST(CProps, copyIsIndependent)
{
    CProps original;
    original.set("a", "1");
    CProps copy(original);
    copy.set("a", "2");
    EXPECT_EQ(original.get("a", ""), "1");

    original = copy;
    EXPECT_EQ(original.get("a", ""), "2");
    EXPECT_EQ(original.getRefCount(), 1);
}

} // namespace
