#include "selection/TestPatterns.h"

#include "Tree.h"

#include <gmock/gmock.h>

namespace
{

using qix::CGlob;
using qix::CTestTree;
using qix::findPatterns;
using qix::PatternHits;
using test::group;
using test::leaf;
using testing::ElementsAre;

/// Compares in the plainest way, character by character.
bool matches(std::string const& pattern, std::string const& text)
{
    if (pattern.empty())
    {
        return text.empty();
    }
    if (pattern[0] == '*')
    {
        return matches(pattern.substr(1), text) ||
               (!text.empty() && matches(pattern, text.substr(1)));
    }
    return !text.empty() && pattern[0] == text[0] && matches(pattern.substr(1), text.substr(1));
}

std::string randomText(std::mt19937& random, char const* letters, std::size_t longest)
{
    std::string text;
    for (std::size_t i = random() % (longest + 1); i > 0; --i)
    {
        text += letters[random() % std::char_traits<char>::length(letters)];
    }
    return text;
}

TEST(CGlob, matchesAsThePlainestComparison)
{
    std::mt19937 random(1);
    int hits = 0;
    for (int i = 0; i < 50000; ++i)
    {
        std::string const pattern =
            randomText(random, "ab*", 4) + "*" + randomText(random, "ab*", 4);
        std::string const text = randomText(random, "ab", 8);
        ASSERT_EQ(CGlob(pattern).matches(text), matches(pattern, text)) << pattern << " " << text;
        hits += matches(pattern, text) ? 1 : 0;
    }
    EXPECT_GT(hits, 1000);
}

TEST(CGlob, goesOnWhereAShorterTextEnded)
{
    std::mt19937 random(2);
    for (int i = 0; i < 50000; ++i)
    {
        std::string const pattern =
            randomText(random, "ab*", 4) + "*" + randomText(random, "ab*", 4);
        std::string const text = randomText(random, "ab", 10);
        CGlob const glob(pattern);
        CGlob::State state;
        for (std::size_t size = 0; size <= text.size(); size += 1 + random() % 3)
        {
            std::string const beginning = text.substr(0, size);
            state = glob.advance(state, beginning);
            ASSERT_EQ(glob.matches(state, beginning), matches(pattern, beginning))
                << pattern << " " << beginning;
        }
    }
}

TEST(FindPatterns, namesFindsAndInherits)
{
    CTestTree const tree({group("net", {leaf("up"), leaf("down")}), leaf("network")});
    EXPECT_THAT(findPatterns(tree, {"net"}).nodes,
                ElementsAre(PatternHits::Named, PatternHits::Found, PatternHits::Found,
                            PatternHits::Nothing));
    EXPECT_THAT(findPatterns(tree, {"*up", "network"}).nodes,
                ElementsAre(PatternHits::Nothing, PatternHits::Found, PatternHits::Nothing,
                            PatternHits::Named));
}

TEST(FindPatterns, tellsWhatHasFoundNothing)
{
    CTestTree const tree({group("net", {leaf("up")})});
    EXPECT_THAT(
        findPatterns(tree, {"net.up", "net.Up", "n*", "x*", "net.up.row", "net.row"}).hasMatched,
        ElementsAre(true, false, true, false, true, false));
}

TEST(FindPatterns, keepsThoseForSubTestsWithTheirTest)
{
    CTestTree const tree({group("net", {leaf("up")})});
    PatternHits const hits = findPatterns(tree, {"net.up.a*", "net.up.b", "net.up.c.d"});
    ASSERT_EQ(hits.subTests.count(1), 1U);
    EXPECT_THAT(hits.subTests.at(1).ids, testing::UnorderedElementsAre("net.up.b", "net.up.c.d"));
    EXPECT_EQ(hits.subTests.at(1).globs.size(), 1U);
    EXPECT_EQ(hits.subTests.at(1).numbers.back(), 0U);
    EXPECT_EQ(hits.nodes[1], PatternHits::Nothing);
}

/// Every id of random trees is found by itself, and by nothing else but what is above it.
TEST(FindPatterns, eachIdFindsItsNode)
{
    std::mt19937 random(3);
    for (int i = 0; i < 100; ++i)
    {
        CTestTree const tree(test::randomItems(random, 3));
        std::vector<std::string> const ids = test::idsOf(tree);
        for (qix::NodeIndex wanted = 0; wanted < tree.size(); ++wanted)
        {
            PatternHits const hits = findPatterns(tree, {ids[wanted]});
            for (qix::NodeIndex node = 0; node < tree.size(); ++node)
            {
                auto const expected = node == wanted ? PatternHits::Named
                                      : node > wanted && node < tree.endOf(wanted)
                                          ? PatternHits::Found
                                          : PatternHits::Nothing;
                ASSERT_EQ(hits.nodes[node], expected) << ids[wanted] << " " << ids[node];
            }
        }
    }
}

} // namespace
