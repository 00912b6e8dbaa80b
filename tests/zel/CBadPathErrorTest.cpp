#include <zel/CBadPathError.h>

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <typeinfo>

namespace
{

using zel::CBadPathError;
using zel::CError;

static_assert(sizeof(CBadPathError) == sizeof(CError), "it adds no fields");

TEST(CBadPathError, namesThePath)
{
    CBadPathError const e(zel::CPath("/.."));
    EXPECT_STREQ(e.what(), "Invalid path: /..");
    EXPECT_EQ(e.getMessage(), "Invalid path: /..");
    EXPECT_TRUE(e.getSecondText().empty());
    EXPECT_EQ(e.getCode(), -1);
    EXPECT_TRUE(e.getProps().isEmpty());
    EXPECT_EQ(e.getCause(), nullptr);
}

TEST(CBadPathError, cloneKeepsTheType)
{
    CBadPathError const e(zel::CPath("/.."));
    zel::P<CError> const clone = e.clone();
    CError const& copy = *clone;
    EXPECT_EQ(typeid(copy), typeid(CBadPathError));
    EXPECT_EQ(copy.getRefCount(), 1);
    EXPECT_STREQ(copy.what(), e.what());
}

TEST(CBadPathError, throwCloneIsCaughtByEachOfItsTypes)
{
    CBadPathError const e(zel::CPath("/.."));
    CError const& base = e;
    EXPECT_THROW(base.throwClone(), CBadPathError);
    EXPECT_THROW(base.throwClone(), CError);
    EXPECT_THROW(base.throwClone(), std::exception);
}

} // namespace
