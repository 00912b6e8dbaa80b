#include <zel/CUnixPathTraits.h>
#include <zel/TSafeGlobalPointer.h>

namespace zel
{

P<String> CUnixPathTraits::getSep()
{
    static TSafeGlobalPointer<String> g_pSeps(&_sepGuard, &_createSepString);
    return g_pSeps.get();
}

P<String> CUnixPathTraits::getAllSeps()
{
    static TSafeGlobalPointer<String> g_pSeps(&_allSepsGuard, &_createAllSepsString);
    return g_pSeps.get();
}

bool CUnixPathTraits::isAbsolute(String const& text) noexcept
{
    return !text.empty() && *text.begin() == L'/';
}

int CUnixPathTraits::getRootLength(String const& text, int* keepLength) noexcept
{
    bool const hasRoot = isAbsolute(text);
    *keepLength = hasRoot ? 1 : 0;
    return hasRoot ? 1 : -1;
}

P<String> CUnixPathTraits::_createSepString()
{
    return newObj<String>("/");
}

P<String> CUnixPathTraits::_createAllSepsString()
{
    return newObj<String>("/");
}

CSafeGlobalGuard& CUnixPathTraits::_sepGuard()
{
    static CSafeGlobalGuard guard;
    return guard;
}

CSafeGlobalGuard& CUnixPathTraits::_allSepsGuard()
{
    static CSafeGlobalGuard guard;
    return guard;
}

} // namespace zel
