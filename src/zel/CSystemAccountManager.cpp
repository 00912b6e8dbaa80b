#include <zel/CError.h>
#include <zel/CSystemAccountManager.h>
#include <zel/TSafeGlobalPointer.h>

#include "localeText.h"

#include <cerrno>
#include <string>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace zel
{

namespace
{

P<CSystemAccountManager> createInstance()
{
    return newObj<CSystemAccountManager>();
}

[[noreturn]] void throwNoName(uid_t user, String const& reason)
{
    throw CError("Unable to find the name of the user with id " + String(std::to_string(user)) +
                 ": " + reason + ".");
}

std::string readUserName(uid_t user)
{
    std::vector<char> buffer(1024);
    for (;;)
    {
        passwd entry = {};
        passwd* found = nullptr;
        int const error = getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found);
        if (error == ERANGE)
        {
            buffer.resize(buffer.size() * 2);
        }
        else if (found != nullptr)
        {
            return found->pw_name;
        }
        else if (error != EINTR)
        {
            throwNoName(user,
                        error == 0 ? String("there is no such account") : messageOfError(error));
        }
    }
}

} // namespace

CSystemAccountManager::CSystemAccountManager() = default;

CSystemAccountManager::~CSystemAccountManager() = default;

P<CSystemAccountManager> CSystemAccountManager::get()
{
    static TSafeGlobalPointer<CSystemAccountManager> g_pInstance(&globalInstanceGuard,
                                                                 &createInstance);
    return g_pInstance.get();
}

CSafeGlobalGuard& CSystemAccountManager::globalInstanceGuard()
{
    static CSafeGlobalGuard guard;
    return guard;
}

String CSystemAccountManager::getProcessUserName() const
{
    uid_t const user = geteuid();
    if (auto const name = decodeLocaleText(readUserName(user)))
    {
        return *name;
    }
    throwNoName(user, "it is not valid in the encoding of the locale");
}

bool CSystemAccountManager::isProcessUserAdmin() const noexcept
{
    return geteuid() == 0;
}

} // namespace zel
