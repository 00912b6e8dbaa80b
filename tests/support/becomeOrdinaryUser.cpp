#include "becomeOrdinaryUser.h"

#include <cerrno>
#include <system_error>

#include <grp.h>
#include <unistd.h>

namespace test
{

namespace
{

void check(int result, char const* call)
{
    if (result != 0)
    {
        throw std::system_error(errno, std::generic_category(), call);
    }
}

} // namespace

void becomeOrdinaryUser()
{
    constexpr unsigned nobody = 65534;
    if (geteuid() == 0)
    {
        check(setgroups(0, nullptr), "setgroups");
        check(setresgid(nobody, nobody, nobody), "setresgid");
        check(setresuid(nobody, nobody, nobody), "setresuid");
    }
}

} // namespace test
