#include <zel/CError.h>
#include <zel/CSystemAccountManager.h>

#include "CFakeAccounts.h"
#include "Locale.h"
#include "TranslatedMessage.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace
{

using test::CFakeAccounts;
using zel::CSystemAccountManager;
using zel::String;

using CSystemAccountManagerInUtf8Locale = test::Utf8LocaleTest;

String getName()
{
    return CSystemAccountManager::get()->getProcessUserName();
}

/// The message of the error that the query ends with.
std::string failToGetName()
{
    try
    {
        return "no error, but the name " + getName().toCPSafe();
    }
    catch (zel::CError const& e)
    {
        return e.what();
    }
}

TEST(CSystemAccountManager, isOneObject)
{
    EXPECT_NE(CSystemAccountManager::get(), nullptr);
    EXPECT_EQ(CSystemAccountManager::get(), CSystemAccountManager::get());
    EXPECT_TRUE(CSystemAccountManager::globalInstanceGuard().isStarted());
}

TEST(CSystemAccountManager, namesTheEffectiveUser)
{
    CFakeAccounts const accounts(1234, "alice");
    EXPECT_EQ(getName(), "alice");
}

TEST(CSystemAccountManager, keepsNoAnswers)
{
    CFakeAccounts accounts(1234, "alice");
    EXPECT_EQ(getName(), "alice");
    accounts.m_userId = 1235;
    accounts.m_userName = "bob";
    EXPECT_EQ(getName(), "bob");
}

TEST(CSystemAccountManager, givesTheDatabaseMoreRoomWhenItAsks)
{
    CFakeAccounts accounts(1234, "alice");
    accounts.m_bufferSize = 100000;
    EXPECT_EQ(getName(), "alice");
    EXPECT_GT(accounts.m_queries, 1);
}

TEST(CSystemAccountManager, repeatsAnInterruptedQuery)
{
    CFakeAccounts accounts(1234, "alice");
    accounts.m_interruptions = 2;
    EXPECT_EQ(getName(), "alice");
    EXPECT_EQ(accounts.m_queries, 3);
}

TEST(CSystemAccountManager, errorForAUserWithoutAnEntryNamesItsId)
{
    CFakeAccounts accounts(1234);
    accounts.m_hasEntry = false;
    EXPECT_EQ(failToGetName(), "Unable to find the name of the user with id 1234: there is no such "
                               "account.");
}

TEST(CSystemAccountManager, errorForAnUnreadableDatabaseNamesIdAndReason)
{
    CFakeAccounts accounts(1234, "alice");
    accounts.m_error = EIO;
    EXPECT_EQ(failToGetName(),
              "Unable to find the name of the user with id 1234: Input/output error.");
}

TEST(CSystemAccountManager, userIdZeroIsTheAdministrator)
{
    CFakeAccounts accounts(0, "anybody");
    EXPECT_TRUE(CSystemAccountManager::get()->isProcessUserAdmin());
    accounts.m_userId = 1;
    accounts.m_userName = "root";
    EXPECT_FALSE(CSystemAccountManager::get()->isProcessUserAdmin());
}

TEST_F(CSystemAccountManagerInUtf8Locale, decodesTheName)
{
    CFakeAccounts const accounts(1234, "j\xc3\xbcrgen");
    EXPECT_EQ(getName(), L"j\u00fcrgen");
}

TEST_F(CSystemAccountManagerInUtf8Locale, decodesTheReason)
{
    test::TranslatedMessage const german("Input/output error", "Ger\xc3\xa4tefehler");
    CFakeAccounts accounts(1234, "alice");
    accounts.m_error = EIO;
    EXPECT_EQ(failToGetName(),
              "Unable to find the name of the user with id 1234: Ger\xc3\xa4tefehler.");
}

TEST_F(CSystemAccountManagerInUtf8Locale, refusesANameThatIsNoUtf8)
{
    CFakeAccounts const accounts(1234, "j\xfcrgen");
    EXPECT_EQ(failToGetName(), "Unable to find the name of the user with id 1234: it is not valid "
                               "in the encoding of the locale.");
}

} // namespace
