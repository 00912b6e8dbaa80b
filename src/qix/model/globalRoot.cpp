#include <qix/CTestItemGroup.h>
#include <zel/CCachedEnvVars.h>
#include <zel/CSystemAccountManager.h>
#include <zel/CUnixPathTraits.h>

#include <exception>

namespace qix
{

namespace
{

/// What cannot be made now is made on its first use.
template <typename Get>
void makeIfPossible(Get const& get)
{
    try
    {
        get();
    }
    catch (std::exception const&)
    {
    }
}

/// What destructors of tests may use has to outlive the root, which owns the tests: a safe global
/// that has gone lets its users wait for ever.
zel::P<CTestItemGroup> makeRoot()
{
    makeIfPossible(&zel::CUnixPathTraits::getSep);
    makeIfPossible(&zel::CUnixPathTraits::getAllSeps);
    makeIfPossible(&zel::CCachedEnvVars::get);
    makeIfPossible(&zel::CSystemAccountManager::get);
    return zel::newObj<CTestItemGroup>("");
}

} // namespace

zel::P<CTestItemGroup> detail::globalRoot()
{
    static zel::P<CTestItemGroup> g_pGlobal = makeRoot();
    return g_pGlobal;
}

} // namespace qix
