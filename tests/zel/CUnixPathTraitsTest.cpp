#include <zel/CUnixPathTraits.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace
{

using zel::CUnixPathTraits;
using zel::P;
using zel::String;

TEST(CUnixPathTraits, threadsThatComeFirstTogetherGetOneSeparator)
{
    std::vector<P<String>> found(8);
    std::vector<std::thread> threads;
    threads.reserve(found.size());
    for (P<String>& separator : found)
    {
        threads.emplace_back([&separator] { separator = CUnixPathTraits::getSep(); });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    for (P<String> const& separator : found)
    {
        EXPECT_EQ(separator, found.front());
        EXPECT_EQ(*separator, "/");
    }
}

TEST(CUnixPathTraits, separatorsAreOneSlash)
{
    EXPECT_EQ(*CUnixPathTraits::getSep(), "/");
    EXPECT_EQ(*CUnixPathTraits::getAllSeps(), "/");
    EXPECT_NE(CUnixPathTraits::getSep(), CUnixPathTraits::getAllSeps());
    EXPECT_EQ(CUnixPathTraits::getAllSeps(), CUnixPathTraits::getAllSeps());
}

TEST(CUnixPathTraits, eachSeparatorHasAGuardOfItsOwn)
{
    CUnixPathTraits::getSep();
    CUnixPathTraits::getAllSeps();
    EXPECT_TRUE(CUnixPathTraits::_sepGuard().isStarted());
    EXPECT_TRUE(CUnixPathTraits::_allSepsGuard().isStarted());
    EXPECT_NE(&CUnixPathTraits::_sepGuard(), &CUnixPathTraits::_allSepsGuard());
    EXPECT_EQ(&CUnixPathTraits::_sepGuard(), &CUnixPathTraits::_sepGuard());
}

TEST(CUnixPathTraits, absoluteBeginsWithASlash)
{
    EXPECT_TRUE(CUnixPathTraits::isAbsolute("/"));
    EXPECT_TRUE(CUnixPathTraits::isAbsolute("/a"));
    EXPECT_FALSE(CUnixPathTraits::isAbsolute(""));
    EXPECT_FALSE(CUnixPathTraits::isAbsolute("a/"));
    EXPECT_FALSE(CUnixPathTraits::isAbsolute("~/a"));
}

TEST(CUnixPathTraits, rootHasOneCharacter)
{
    int keepLength = 7;
    EXPECT_EQ(CUnixPathTraits::getRootLength("//a", &keepLength), 1);
    EXPECT_EQ(keepLength, 1);
    EXPECT_EQ(CUnixPathTraits::getRootLength("a", &keepLength), -1);
    EXPECT_EQ(keepLength, 0);
}

} // namespace
