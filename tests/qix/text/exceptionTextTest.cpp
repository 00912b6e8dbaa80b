#include "text/exceptionText.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string_view>

namespace
{

template <typename T>
std::string messageOfThrown(T const& thrown)
{
    try
    {
        throw thrown;
    }
    catch (...)
    {
        return qix::currentMessage();
    }
}

TEST(CurrentMessage, isThatOfTheExceptionOrTheTextThatWasThrown)
{
    EXPECT_EQ(messageOfThrown(std::runtime_error("the disk is full")), "the disk is full");
    EXPECT_EQ(messageOfThrown(std::string("the disk is full")), "the disk is full");
    EXPECT_EQ(messageOfThrown(std::string_view("the disk is full")), "the disk is full");
    EXPECT_EQ(messageOfThrown(static_cast<char const*>("the disk is full")), "the disk is full");
}

TEST(CurrentMessage, isEmptyWhereThereIsNone)
{
    EXPECT_EQ(messageOfThrown(1), "");
    EXPECT_EQ(messageOfThrown(static_cast<char const*>(nullptr)), "");
    EXPECT_EQ(qix::currentMessage(), "");
}

} // namespace
