#include <qix/CTestItemGroup.h>
#include <zel/CCachedEnvVars.h>
#include <zel/CSystemAccountManager.h>
#include <zel/CUnixPathTraits.h>

#include <exception>

namespace qix
{

namespace
{

/// Objects that cannot be made now are made on their first use.
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

/// The safe globals that destructors of tests may use have to outlive the root, which owns the
/// tests: whoever uses one after its end waits for ever.
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
