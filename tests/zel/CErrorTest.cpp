#include <zel/CError.h>
#include <zel/CInvalidArgError.h>

#include "Locale.h"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <string>
#include <type_traits>

namespace
{

using zel::CError;
using zel::CProps;
using zel::P;
using zel::String;

using CErrorInUtf8Locale = test::Utf8LocaleTest;
using CErrorInCLocale = test::CLocaleTest;

static_assert(noexcept(std::declval<CError const&>().what()));

CProps makeProps()
{
    CProps props;
    props.set("path", "/tmp");
    return props;
}

CError makeError()
{
    CError const cause("cause");
    return CError("message", "second text", 42, makeProps(), &cause);
}

void expectSameAsMade(CError const& error)
{
    EXPECT_STREQ(error.what(), "message");
    EXPECT_EQ(error.getMessage(), "message");
    EXPECT_EQ(error.getSecondText(), "second text");
    EXPECT_EQ(error.getCode(), 42);
    EXPECT_EQ(error.getProps().get("path", ""), "/tmp");
    ASSERT_NE(error.getCause(), nullptr);
    EXPECT_EQ(error.getCause()->getMessage(), "cause");
}

TEST(CError, keepsWhatItWasMadeOf)
{
    expectSameAsMade(makeError());
}

TEST(CError, hasDefaultsForAllButTheMessage)
{
    CError const error("message");
    EXPECT_TRUE(error.getSecondText().empty());
    EXPECT_EQ(error.getCode(), -1);
    EXPECT_TRUE(error.getProps().isEmpty());
    EXPECT_EQ(error.getCause(), nullptr);
}

TEST(CError, keepsCodesOf64Bits)
{
    EXPECT_EQ(CError("", "", 0x7fffffffffffffffLL).getCode(), 0x7fffffffffffffffLL);
}

TEST(CError, messageMayBeEmpty)
{
    EXPECT_STREQ(CError("").what(), "");
}

TEST(CError, copyHasEverything)
{
    CError const original = makeError();
    CError const copy(original);
    expectSameAsMade(copy);
    EXPECT_EQ(copy.getRefCount(), 1);
}

TEST(CError, copyOutlivesTheOriginal)
{
    auto original = std::make_unique<CError>(makeError());
    CError const copy(*original);
    original.reset();
    expectSameAsMade(copy);
}

TEST(CError, cloneIsOwnedByTheReturnedPointerAlone)
{
    CError const original = makeError();
    P<CError> const clone = original.clone();
    ASSERT_NE(clone, nullptr);
    EXPECT_NE(clone.get(), &original);
    EXPECT_EQ(clone->getRefCount(), 1);
    CError const& copy = *clone;
    EXPECT_TRUE(typeid(copy) == typeid(CError));
    expectSameAsMade(*clone);
}

TEST(CError, throwCloneThrowsACopy)
{
    CError const original = makeError();
    try
    {
        original.throwClone();
    }
    catch (CError const& e)
    {
        EXPECT_NE(&e, &original);
        expectSameAsMade(e);
    }
}

TEST(CError, keepsACloneOfTheCauseWithItsType)
{
    auto cause = std::make_unique<zel::CInvalidArgError>("f", "x", CProps());
    CError const error("message", String(), -1, CProps(), cause.get());
    cause.reset();
    P<CError> const kept = error.getCause();
    ASSERT_NE(kept, nullptr);
    EXPECT_NE(dynamic_cast<zel::CInvalidArgError*>(kept.get()), nullptr);
    EXPECT_EQ(kept->getRefCount(), 2) << "the error's own reference and ours";
}

TEST_F(CErrorInUtf8Locale, whatIsInTheEncodingOfTheLocale)
{
    EXPECT_STREQ(CError(L"f\u00fcr").what(), "f\xc3\xbcr");
}

TEST_F(CErrorInCLocale, whatReplacesWhatTheLocaleLacks)
{
    EXPECT_STREQ(CError(L"1 \u20ac").what(), "1 ?");
    EXPECT_EQ(CError(L"1 \u20ac").getMessage(), L"1 \u20ac");
}

} // namespace
