#include <zel/CBadPathError.h>
#include <zel/TPathImpl.h>

#include "CTempWorkDirectory.h"
#include "errorOf.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace
{

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

/// The rules once more, slowly and on plain strings: texts are rewritten until nothing changes.
namespace model
{

struct Path
{
    std::string text;
    bool isNormalized;
};

std::vector<std::string> split(std::string const& text)
{
    std::vector<std::string> parts(1);
    for (char const character : text)
    {
        if (character == '/')
        {
            parts.emplace_back();
        }
        else
        {
            parts.back() += character;
        }
    }
    return parts;
}

bool startsWithSlash(std::string const& text)
{
    return text.compare(0, 1, "/") == 0;
}

Path join(Path const& left, Path const& right)
{
    if (right.text.empty())
    {
        return left;
    }
    if (startsWithSlash(right.text))
    {
        return right;
    }
    bool const isPlain =
        right.text != "." && right.text != ".." && right.text.find('/') == std::string::npos;
    bool const needsSlash = !left.text.empty() && left.text.back() != '/';
    return {left.text + (needsSlash ? "/" : "") + right.text, left.isNormalized && isPlain};
}

/// Drops the first component that can go. \return false when none can
bool rewrite(std::vector<std::string>& parts)
{
    for (auto part = parts.begin(); part != parts.end(); ++part)
    {
        if (part->empty() || *part == ".")
        {
            parts.erase(part);
            return true;
        }
        if (*part != ".." && part + 1 != parts.end() && part[1] == "..")
        {
            parts.erase(part, part + 2);
            return true;
        }
    }
    return false;
}

/// Nothing when the path climbs above the root.
std::optional<Path> normalize(Path const& path, bool makeAbsolute, std::string const& base,
                              std::string const& current)
{
    if (path.isNormalized)
    {
        return path;
    }
    std::string text = path.text;
    if (makeAbsolute && !text.empty() && !startsWithSlash(text))
    {
        text = join({base.empty() ? current : base, false}, path).text;
    }
    std::vector<std::string> parts = split(text);
    while (rewrite(parts))
    {
    }
    bool const hasRoot = startsWithSlash(text);
    if (hasRoot && !parts.empty() && parts.front() == "..")
    {
        return std::nullopt;
    }
    std::string result = hasRoot ? "/" : "";
    for (std::size_t i = 0; i < parts.size(); ++i)
    {
        result += (i == 0 ? "" : "/") + parts[i];
    }
    return Path{result, makeAbsolute || startsWithSlash(result)};
}

} // namespace model

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

TEST(TPathImplModel, normalizesAsTheModelDoes)
{
    test::CTempWorkDirectory const folder;
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
                auto const expected =
                    model::normalize({text, false}, makeAbsolute, base, folder.getPath().string());
                std::optional<model::Path> found;
                try
                {
                    CPath const path =
                        CPath(String(text)).toNormalized(makeAbsolute, CPath(String(base)));
                    found = model::Path{textOf(path), path.isNormalized()};
                }
                catch (zel::CBadPathError const& e)
                {
                    ASSERT_EQ(e.what(), "Invalid path: " + text);
                }
                ASSERT_EQ(found.has_value(), expected.has_value()) << text << " on " << base;
                if (found)
                {
                    ASSERT_EQ(found->text, expected->text) << text << " on " << base;
                    ASSERT_EQ(found->isNormalized, expected->isNormalized) << text;
                }
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
            if (isNormalized && !model::normalize({leftText, false}, true, "/b", ""))
            {
                continue;
            }
            CPath const left = isNormalized ? plain.toNormalized(true, "/b") : plain;
            for (std::string const& right : texts)
            {
                model::Path const expected =
                    model::join({textOf(left), isNormalized}, {right, false});
                CPath const found = left << CPath(String(right));
                ASSERT_EQ(textOf(found), expected.text) << leftText << " << " << right;
                ASSERT_EQ(found.isNormalized(), expected.isNormalized)
                    << leftText << " << " << right;
                ++count;
            }
        }
    }
    std::printf("%zu strings, %zu joins\n", texts.size(), count);
}

} // namespace
