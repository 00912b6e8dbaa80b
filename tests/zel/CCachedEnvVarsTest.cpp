#include <zel/CCachedEnvVars.h>

#include "CScopedEnvVar.h"
#include "Locale.h"
#include "errorOf.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace
{

using test::CScopedEnvVar;
using zel::CCachedEnvVars;
using zel::String;

using CCachedEnvVarsInUtf8Locale = test::Utf8LocaleTest;
using CCachedEnvVarsInCLocale = test::CLocaleTest;

char const name[] = "ZEL_UNIT_TEST";

String getVar()
{
    return CCachedEnvVars::get()->getVar(name, "default");
}

TEST(CCachedEnvVars, isOneObject)
{
    EXPECT_EQ(CCachedEnvVars::get(), CCachedEnvVars::get());
    EXPECT_TRUE(CCachedEnvVars::globalInstanceGuard().isStarted());
    EXPECT_EQ(&CCachedEnvVars::globalInstanceGuard(), &CCachedEnvVars::globalInstanceGuard());
}

TEST(CCachedEnvVars, givesTheDefaultOnlyForAVariableThatIsNotSet)
{
    {
        CScopedEnvVar const unset(name, std::nullopt);
        EXPECT_EQ(getVar(), "default");
    }
    CScopedEnvVar const empty(name, "");
    EXPECT_EQ(getVar(), "");
}

TEST(CCachedEnvVars, seesEachChange)
{
    CScopedEnvVar const variable(name, "one");
    EXPECT_EQ(getVar(), "one");
    EXPECT_EQ(getVar(), "one");
    setenv(name, "two", 1);
    EXPECT_EQ(getVar(), "two");
    setenv(name, "one", 1);
    EXPECT_EQ(getVar(), "one");
    unsetenv(name);
    EXPECT_EQ(getVar(), "default");
}

TEST(CCachedEnvVars, givesTheDefaultForWhatIsNoNameOfAVariable)
{
    CScopedEnvVar const variable(name, "one=two");
    auto const environment = CCachedEnvVars::get();
    EXPECT_EQ(environment->getVar(std::string(name) + '\0' + "more", "default"), "default");
    EXPECT_EQ(environment->getVar(String(name) + "=one", "default"), "default");
    EXPECT_EQ(environment->getVar("", "default"), "default");
}

TEST(CCachedEnvVars, isReadBySeveralThreads)
{
    CScopedEnvVar const variable(name, "value");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            []
            {
                for (int j = 0; j < 200; ++j)
                {
                    EXPECT_EQ(getVar(), "value");
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
}

TEST_F(CCachedEnvVarsInUtf8Locale, decodesUtf8)
{
    CScopedEnvVar const variable(name, "f\xc3\xbcr \xe2\x82\xac");
    EXPECT_EQ(getVar(), L"f\u00fcr \u20ac");
}

TEST_F(CCachedEnvVarsInUtf8Locale, refusesBytesThatAreNoUtf8)
{
    CScopedEnvVar const variable(name, "f\xfcr");
    EXPECT_EQ(test::errorOf([] { getVar(); }),
              "The environment variable ZEL_UNIT_TEST holds bytes that are not valid in the "
              "encoding of the locale.");
}

TEST_F(CCachedEnvVarsInCLocale, aNameThatCannotBeEncodedIsNoOtherName)
{
    CScopedEnvVar const variable("?", "value");
    EXPECT_EQ(CCachedEnvVars::get()->getVar(L"\u20ac", "default"), "default");
}

TEST_F(CCachedEnvVarsInCLocale, readsEachByteAsACharacter)
{
    CScopedEnvVar const variable(name, "f\xfcr");
    EXPECT_EQ(getVar(), L"f\u00fcr");
}

} // namespace
