#include <qix/CTestAbortedException.h>
#include <qix/CTestFailedException.h>
#include <qix/CTestSkippedException.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace
{

using qix::CTestAbortedException;
using qix::CTestFailedException;
using qix::CTestSkippedException;
using zel::CError;
using zel::P;

template <typename Exception>
class OutcomeException : public testing::Test
{
protected:
    static Exception make()
    {
        if constexpr (std::is_default_constructible_v<Exception>)
        {
            return Exception();
        }
        else
        {
            return Exception("no verdict");
        }
    }
};

using OutcomeExceptions =
    testing::Types<CTestAbortedException, CTestFailedException, CTestSkippedException>;
TYPED_TEST_SUITE(OutcomeException, OutcomeExceptions, );

TYPED_TEST(OutcomeException, isAnErrorWithoutACode)
{
    CError const& error = this->make();
    EXPECT_EQ(error.getCode(), -1);
    EXPECT_TRUE(error.getSecondText().empty());
    EXPECT_EQ(error.getCause(), nullptr);
}

TYPED_TEST(OutcomeException, cloneKeepsTheType)
{
    TypeParam const exception = this->make();
    CError const& asError = exception;
    P<CError> const clone = asError.clone();
    zel::CError const& copy = *clone;
    EXPECT_TRUE(typeid(copy) == typeid(TypeParam));
    EXPECT_EQ(clone->getRefCount(), 1);
    EXPECT_STREQ(clone->what(), exception.what());
}

TYPED_TEST(OutcomeException, throwCloneOfWhatWasCaughtAsCErrorKeepsTheType)
{
    EXPECT_THROW(
        {
            try
            {
                throw this->make();
            }
            catch (CError const& e)
            {
                e.throwClone();
            }
        },
        TypeParam);
}

TEST(CTestSkippedException, saysThatTheTestWasSkipped)
{
    CTestSkippedException const exception;
    EXPECT_NE(std::string(exception.what()).find("Test skipped"), std::string::npos);
    EXPECT_EQ(exception.getMessage(), "Test skipped");
    EXPECT_TRUE(exception.getSecondText().empty());
    EXPECT_EQ(exception.getCode(), -1);
    EXPECT_TRUE(exception.getProps().isEmpty());
    EXPECT_EQ(exception.getCause(), nullptr);
}

TEST(CTestAbortedException, hasTheConstructorsOfCError)
{
    CTestAbortedException const exception("stopped", "why", 5, zel::CProps(), nullptr);
    EXPECT_STREQ(exception.what(), "stopped");
    EXPECT_EQ(exception.getSecondText(), "why");
    EXPECT_EQ(exception.getCode(), 5);
}

} // namespace
