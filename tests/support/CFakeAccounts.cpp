#include "CFakeAccounts.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <pwd.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace test
{

namespace
{

CFakeAccounts* g_accounts = nullptr;

int answer(CFakeAccounts& accounts, passwd& entry, char* buffer, std::size_t size)
{
    if (accounts.m_interruptions > 0)
    {
        --accounts.m_interruptions;
        return EINTR;
    }
    if (accounts.m_error != 0)
    {
        return accounts.m_error;
    }
    if (size < accounts.m_bufferSize || size <= accounts.m_userName.size())
    {
        return ERANGE;
    }
    std::memcpy(buffer, accounts.m_userName.c_str(), accounts.m_userName.size() + 1);
    entry.pw_name = buffer;
    return 0;
}

} // namespace

CFakeAccounts::CFakeAccounts(uid_t userId, std::string userName)
    : m_userId(userId), m_userName(std::move(userName))
{
    g_accounts = this;
}

CFakeAccounts::~CFakeAccounts()
{
    g_accounts = nullptr;
}

} // namespace test

extern "C" __attribute__((visibility("default"))) int
getpwuid_r(uid_t user, passwd* entry, char* buffer, std::size_t size, passwd** result)
{
    using test::g_accounts;
    *result = nullptr;
    if (g_accounts == nullptr)
    {
        return ENOENT;
    }
    ++g_accounts->m_queries;
    int const error = test::answer(*g_accounts, *entry, buffer, size);
    if (error == 0 && g_accounts->m_hasEntry && user == g_accounts->m_userId)
    {
        *result = entry;
    }
    return error;
}

extern "C" __attribute__((visibility("default"))) uid_t geteuid() noexcept
{
    return test::g_accounts == nullptr ? static_cast<uid_t>(syscall(SYS_geteuid))
                                       : test::g_accounts->m_userId;
}
