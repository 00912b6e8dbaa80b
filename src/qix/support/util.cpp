#include <qix/CTestSkippedException.h>
#include <qix/util.h>
#include <zel/CSystemAccountManager.h>

namespace qix
{

void throwSkippedExceptionIfNotAdmin()
{
    if (!zel::CSystemAccountManager::get()->isProcessUserAdmin())
    {
        throw CTestSkippedException();
    }
}

void throwSkippedExceptionIfAdmin()
{
    if (zel::CSystemAccountManager::get()->isProcessUserAdmin())
    {
        throw CTestSkippedException();
    }
}

} // namespace qix
