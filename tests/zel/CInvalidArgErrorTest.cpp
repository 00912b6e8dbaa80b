#include <zel/CInvalidArgError.h>

#include <gtest/gtest.h>

#include <exception>

namespace
{

using zel::CError;
using zel::CInvalidArgError;
using zel::CProps;

TEST(CInvalidArgError, buildsItsMessage)
{
    EXPECT_STREQ(CInvalidArgError("f", "x", CProps()).what(), "Invalid argument passed to 'f': x.");
    EXPECT_STREQ(CInvalidArgError("", "x", CProps()).what(), "Invalid argument passed to '': x.");
}

TEST(CInvalidArgError, carriesPropertiesAndNothingElse)
{
    CProps props;
    props.set("name", "value");
    CInvalidArgError const error("f", "x", props);
    EXPECT_EQ(error.getProps().get("name", ""), "value");
    EXPECT_TRUE(error.getSecondText().empty());
    EXPECT_EQ(error.getCode(), -1);
    EXPECT_EQ(error.getCause(), nullptr);
}

TEST(CInvalidArgError, cloneKeepsTheType)
{
    CInvalidArgError const error("f", "x", CProps());
    CError const& asError = error;
    zel::P<CError> const clone = asError.clone();
    CError const& copy = *clone;
    EXPECT_TRUE(typeid(copy) == typeid(CInvalidArgError));
    EXPECT_EQ(clone->getRefCount(), 1);
    EXPECT_STREQ(clone->what(), error.what());
}

TEST(CInvalidArgError, throwCloneIsCaughtAsEachOfItsTypes)
{
    CInvalidArgError const error("f", "x", CProps());
    CError const& asError = error;
    EXPECT_THROW(asError.throwClone(), CInvalidArgError);
    EXPECT_THROW(asError.throwClone(), CError);
    EXPECT_THROW(asError.throwClone(), std::exception);
}

} // namespace
