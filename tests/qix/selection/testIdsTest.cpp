#include "selection/testIds.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

std::string idOf(std::string const& name)
{
    std::string id;
    qix::appendIdComponent(id, name);
    return id;
}

/// Reads an id in the plainest way.
std::string decoded(std::string const& id)
{
    if (id == "%")
    {
        return "";
    }
    std::string name;
    for (std::size_t i = 0; i < id.size(); ++i)
    {
        if (id[i] == '%')
        {
            name += static_cast<char>(std::stoi(id.substr(i + 1, 2), nullptr, 16));
            i += 2;
        }
        else
        {
            name += id[i];
        }
    }
    return name;
}

std::string escapedThroughout(std::string const& name)
{
    std::string text;
    for (unsigned char const byte : name)
    {
        char escaped[4];
        std::snprintf(escaped, sizeof escaped, "%%%02x", byte);
        text += escaped;
    }
    return text.empty() ? "%" : text;
}

std::string randomName(std::mt19937& random)
{
    static char const* const pieces[] = {"a",    "Z",    "9",    "_",
                                         "-",    ".",    "#",    "%",
                                         "*",    "/",    " ",    "\xC3\xBC",
                                         "\xC3", "\xA9", "\xFF", "\xE2\x86\x92",
                                         "2",    "\n",   "\\",   "\xF0\x90\x80\x80"};
    std::string name;
    for (std::size_t i = random() % 8; i > 0; --i)
    {
        name += pieces[random() % std::size(pieces)];
    }
    return name;
}

TEST(TestIds, keepsLettersAndDigitsOfAllScripts)
{
    for (char const* const name : {"aZ09_-", "\xC3\xBC", "\xCE\xA9", "\xD0\x96", "\xE4\xB8\xAD",
                                   "\xD9\xA3", "\xF0\x90\x80\x80"})
    {
        EXPECT_EQ(idOf(name), name);
    }
}

TEST(TestIds, escapesWhatIsNoLetterOrDigit)
{
    EXPECT_EQ(idOf(""), "%");
    EXPECT_EQ(idOf("%"), "%25");
    EXPECT_EQ(idOf("a.b"), "a%2Eb");
    EXPECT_EQ(idOf("a#2"), "a%232");
    EXPECT_EQ(idOf("\xE2\x86\x92"), "%E2%86%92");
    EXPECT_EQ(idOf(std::string(1, '\0')), "%00");
}

TEST(TestIds, escapesBytesThatAreNoUtf8)
{
    EXPECT_EQ(idOf("\xFC"), "%FC");
    EXPECT_EQ(idOf("\xC3"), "%C3");
    EXPECT_EQ(idOf("\xC3x"), "%C3x");
    EXPECT_EQ(idOf("\xC1\x81"), "%C1%81");
    EXPECT_EQ(idOf("\xED\xA0\x80"), "%ED%A0%80");
    EXPECT_EQ(idOf("\xF4\x90\x80\x80"), "%F4%90%80%80");
    EXPECT_EQ(idOf("\xE4\xB8"), "%E4%B8");
}

TEST(TestIds, everyByteComesBack)
{
    for (int byte = 0; byte < 256; ++byte)
    {
        std::string const name(1, static_cast<char>(byte));
        EXPECT_EQ(decoded(idOf(name)), name);
        EXPECT_EQ(decoded(idOf("a" + name + "b")), "a" + name + "b");
    }
}

TEST(TestIds, randomNamesComeBackHoweverTheyAreWritten)
{
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i)
    {
        std::string const name = randomName(random);
        std::string const id = idOf(name);
        ASSERT_EQ(decoded(id), name);
        ASSERT_EQ(id.find_first_of(".#*/ \n\\"), std::string::npos) << id;
        ASSERT_EQ(qix::normalizedPattern(id), id);
        ASSERT_EQ(qix::normalizedPattern(escapedThroughout(name)), id);
        ASSERT_EQ(qix::normalizedPattern(id + "#12." + id), id + "#12." + id);
    }
}

TEST(TestIds, patternsKeepStarsDotsAndNumbers)
{
    EXPECT_EQ(qix::normalizedPattern("a*.b#2"), "a*.b#2");
    EXPECT_EQ(qix::normalizedPattern("*"), "*");
    EXPECT_EQ(qix::normalizedPattern("%2A"), "%2A");
    EXPECT_EQ(qix::normalizedPattern("a b*c d"), "a%20b*c%20d");
    EXPECT_EQ(qix::normalizedPattern("C#"), "C%23");
    EXPECT_EQ(qix::normalizedPattern("C#x"), "C%23x");
    EXPECT_EQ(qix::normalizedPattern("a#*"), "a#*");
    EXPECT_EQ(qix::normalizedPattern("50%"), "50%25");
    EXPECT_EQ(qix::normalizedPattern("%.%#2"), "%.%#2");
    EXPECT_EQ(qix::normalizedPattern("%61"), "a");
}

} // namespace
