#include <zel/CCachedEnvVars.h>
#include <zel/CError.h>
#include <zel/TSafeGlobalPointer.h>

#include "localeText.h"

#include <cstdlib>

namespace zel
{

namespace
{

P<CCachedEnvVars> createInstance()
{
    return newObj<CCachedEnvVars>();
}

String decodeValue(String const& name, std::string const& bytes)
{
    if (auto const text = decodeLocaleText(bytes))
    {
        return *text;
    }
    throw CError("The environment variable " + name +
                 " holds bytes that are not valid in the encoding of the locale.");
}

} // namespace

CCachedEnvVars::CCachedEnvVars() = default;

CCachedEnvVars::~CCachedEnvVars() = default;

P<CCachedEnvVars> CCachedEnvVars::get()
{
    static TSafeGlobalPointer<CCachedEnvVars> g_pInstance(&globalInstanceGuard, &createInstance);
    return g_pInstance.get();
}

CSafeGlobalGuard& CCachedEnvVars::globalInstanceGuard()
{
    static CSafeGlobalGuard guard;
    return guard;
}

String CCachedEnvVars::getVar(String const& name, String const& defaultValue) const
{
    std::string const key = name.toCPSafe();
    char const* const value = std::getenv(key.c_str());
    if (value == nullptr)
    {
        return defaultValue;
    }
    std::lock_guard<std::mutex> const lock(m_mutex);
    auto const cached = m_decoded.find(key);
    if (cached != m_decoded.end() && cached->second.bytes == value)
    {
        return cached->second.text;
    }
    String const text = decodeValue(name, value);
    m_decoded[key] = Decoded{value, text};
    return text;
}

} // namespace zel
