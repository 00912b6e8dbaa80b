#include <zel/CBadPathError.h>
#include <zel/TPathImpl.h>

#include "CTempWorkDirectory.h"
#include "errorOf.h"
#include "models/PathModel.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace
{

using models::PathModel;
using test::errorOf;
using zel::CPath;
using zel::String;

CPath normalizedPath(char const* text)
{
    CPath const path = CPath(text).toNormalized(false, CPath());
    EXPECT_TRUE(path.isNormalized()) << text;
    return path;
}

std::string textOf(CPath const& path)
{
    return path.getText().toCPSafe();
}

std::string normalized(char const* text)
{
    return textOf(CPath(text).toNormalized(false, "/base"));
}

TEST(TPathImpl, isMadeOfAnyTextAndNotMarkedNormalized)
{
    EXPECT_EQ(textOf(CPath()), "");
    EXPECT_FALSE(CPath().isNormalized());
    EXPECT_EQ(textOf(CPath("/a/../b")), "/a/../b");
    EXPECT_FALSE(CPath("/a").isNormalized());
    EXPECT_EQ(CPath(String(L"\u20ac")).getText(), L"\u20ac");
    EXPECT_EQ(textOf(CPath(static_cast<char const*>(nullptr))), "");
}

TEST(TPathImpl, copyKeepsTextAndFlagAndHasAnOwnCount)
{
    zel::P<CPath> const path = zel::newObj<CPath>(normalizedPath("/a"));
    path->addRef();
    CPath const copy(*path);
    path->release();
    EXPECT_EQ(textOf(copy), "/a");
    EXPECT_TRUE(copy.isNormalized());
    EXPECT_EQ(copy.getRefCount(), 1);
}

TEST(TPathImpl, joinWithAnEmptySideAddsNoSeparator)
{
    EXPECT_EQ(textOf(CPath("") << "b"), "b");
    EXPECT_EQ(textOf(CPath("a") << ""), "a");
    EXPECT_FALSE((CPath("a") << "").isNormalized());
    EXPECT_TRUE((normalizedPath("/a") << "").isNormalized());
}

TEST(TPathImpl, joinWithAnAbsolutePathIsThatPath)
{
    EXPECT_EQ(textOf(CPath("a") << "/x"), "/x");
    EXPECT_FALSE((normalizedPath("/a") << "/x").isNormalized());
    EXPECT_TRUE((CPath("a") << normalizedPath("/x")).isNormalized());
}

TEST(TPathImpl, joinPutsOneSeparatorBetween)
{
    EXPECT_EQ(textOf(CPath("a/") << "b"), "a/b");
    EXPECT_EQ(textOf(CPath("a") << "b"), "a/b");
    EXPECT_EQ(textOf(CPath("a") << "b//c/"), "a/b//c/");
    EXPECT_EQ(textOf(CPath("a//") << "b"), "a//b");
    EXPECT_EQ(textOf(normalizedPath("/") << "a"), "/a");
}

TEST(TPathImpl, joinResolvesNothing)
{
    CPath const path = CPath("a") << "../b";
    EXPECT_EQ(textOf(path), "a/../b");
    EXPECT_FALSE(path.isNormalized());
}

TEST(TPathImpl, normalizedPathStaysSoBehindAPlainComponentOnly)
{
    CPath const usr = normalizedPath("/usr");
    EXPECT_EQ(textOf(usr << "lib"), "/usr/lib");
    EXPECT_TRUE((usr << "lib").isNormalized());
    EXPECT_TRUE((usr << "...").isNormalized());
    EXPECT_EQ(textOf(usr << ".."), "/usr/..");
    for (char const* right : {"..", ".", "a/b", "a/"})
    {
        EXPECT_FALSE((usr << right).isNormalized()) << right;
    }
}

TEST(TPathImpl, normalizesRelativePaths)
{
    EXPECT_EQ(normalized("a/./b//c/"), "a/b/c");
    EXPECT_FALSE(CPath("a/./b//c/").toNormalized(false, "/base").isNormalized());
    EXPECT_EQ(normalized("a/.."), "");
    EXPECT_EQ(normalized("a/../.."), "..");
    EXPECT_EQ(normalized("../x"), "../x");
    EXPECT_EQ(normalized("../../x"), "../../x");
}

TEST(TPathImpl, normalizesAbsolutePaths)
{
    EXPECT_EQ(textOf(normalizedPath("/a/b/../c")), "/a/c");
    EXPECT_EQ(textOf(normalizedPath("/")), "/");
    EXPECT_EQ(textOf(normalizedPath("//")), "/");
    EXPECT_EQ(textOf(normalizedPath("/a/")), "/a");
}

TEST(TPathImpl, climbingAboveTheRootNamesThePathAsItWasGiven)
{
    for (std::string const text : {"/..", "/a/../.."})
    {
        CPath const path{String(text)};
        EXPECT_THROW(path.toNormalized(false, CPath()), zel::CBadPathError);
        EXPECT_EQ(errorOf([&] { path.toNormalized(false, CPath()); }), "Invalid path: " + text);
    }
    EXPECT_EQ(errorOf([] { CPath("../../..").toNormalized(true, "/a"); }),
              "Invalid path: ../../..");
}

TEST(TPathImpl, isMadeAbsoluteWithTheBaseOrTheCurrentFolder)
{
    test::CTempWorkDirectory const folder;
    EXPECT_EQ(textOf(CPath("a/../b").toNormalized(true, CPath())),
              folder.getPath().string() + "/b");
    EXPECT_EQ(textOf(CPath("../b").toNormalized(true, "/base")), "/b");
    EXPECT_EQ(textOf(CPath("b").toNormalized(true, "base")), "base/b");
    EXPECT_EQ(textOf(CPath("/b").toNormalized(true, "/base")), "/b");
    EXPECT_TRUE(CPath("b").toNormalized(true, "/base").isNormalized());
}

TEST(TPathImpl, emptyPathStaysEmptyAndIsMarkedNormalizedWhenMadeAbsolute)
{
    CPath const path = CPath().toNormalized(true, "/base");
    EXPECT_EQ(textOf(path), "");
    EXPECT_TRUE(path.isNormalized());
    EXPECT_FALSE(CPath().toNormalized(false, "/base").isNormalized());
}

TEST(TPathImpl, markIsTrusted)
{
    // Behind a base that is relative and climbs, the mark stands on a text that is not absolute.
    CPath const path = CPath("a").toNormalized(true, "..");
    ASSERT_EQ(textOf(path), "../a");
    ASSERT_TRUE(path.isNormalized());
    CPath const again = path.toNormalized(true, "/base");
    EXPECT_EQ(textOf(again), "../a");
    EXPECT_TRUE(again.isNormalized());
}

PathModel modelOf(std::string const& text)
{
    return {std::wstring(text.begin(), text.end()), false};
}

/// All strings of the alphabet up to a length, the shorter ones first.
std::vector<std::string> allStrings(std::string const& alphabet, std::size_t maxLength)
{
    std::vector<std::string> strings{""};
    for (std::size_t i = 0; i < strings.size() && strings[i].size() < maxLength; ++i)
    {
        for (char const character : alphabet)
        {
            strings.push_back(strings[i] + character);
        }
    }
    return strings;
}

/// The same question to the paths and to their model.
void compareNormalization(std::string const& text, std::string const& base, bool makeAbsolute,
                          std::wstring const& currentFolder)
{
    auto const expected = modelOf(text).normalized(makeAbsolute, modelOf(base), currentFolder);
    std::optional<CPath> found;
    try
    {
        found = CPath(String(text)).toNormalized(makeAbsolute, CPath(String(base)));
    }
    catch (zel::CBadPathError const& e)
    {
        ASSERT_EQ(e.what(), "Invalid path: " + text);
    }
    ASSERT_EQ(found.has_value(), expected.has_value()) << text << " on " << base;
    if (found)
    {
        ASSERT_EQ(found->getText().ToStdWstring(), expected->text) << text << " on " << base;
        ASSERT_EQ(found->isNormalized(), expected->isNormalized) << text << " on " << base;
    }
}

TEST(TPathImplModel, normalizesAsTheModelDoes)
{
    test::CTempWorkDirectory const folder;
    std::wstring const currentFolder = folder.getPath().wstring();
    std::vector<std::string> const texts = allStrings("/.a", 8);
    std::vector<std::string> const bases = {"",   "/",   ".",   "..",    "b",
                                            "/b", "b/c", "/b/", "../b/", "/b/../c//"};
    std::size_t count = 0;
    for (std::string const& text : texts)
    {
        for (std::string const& base : bases)
        {
            for (bool const makeAbsolute : {false, true})
            {
                ASSERT_NO_FATAL_FAILURE(
                    compareNormalization(text, base, makeAbsolute, currentFolder));
                ++count;
            }
        }
    }
    std::printf("%zu strings, %zu normalizations\n", texts.size(), count);
}

TEST(TPathImplModel, joinsAsTheModelDoes)
{
    std::vector<std::string> const texts = allStrings("/.a", 5);
    std::size_t count = 0;
    for (std::string const& leftText : texts)
    {
        CPath const plain{String(leftText)};
        for (bool const isNormalized : {false, true})
        {
            if (isNormalized && !modelOf(leftText).normalized(true, modelOf("/b"), L""))
            {
                continue;
            }
            CPath const left = isNormalized ? plain.toNormalized(true, "/b") : plain;
            PathModel const leftModel = {left.getText().ToStdWstring(), isNormalized};
            for (std::string const& right : texts)
            {
                PathModel const expected = leftModel.joined(modelOf(right));
                CPath const found = left << CPath(String(right));
                ASSERT_EQ(found.getText().ToStdWstring(), expected.text)
                    << leftText << " << " << right;
                ASSERT_EQ(found.isNormalized(), expected.isNormalized)
                    << leftText << " << " << right;
                ++count;
            }
        }
    }
    std::printf("%zu strings, %zu joins\n", texts.size(), count);
}

} // namespace
