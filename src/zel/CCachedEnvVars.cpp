#include <zel/CCachedEnvVars.h>
#include <zel/CError.h>
#include <zel/TSafeGlobalPointer.h>

#include "localeText.h"

#include <cstdlib>
#include <optional>
#include <string>

namespace zel
{

namespace
{

P<CCachedEnvVars> createInstance()
{
    return newObj<CCachedEnvVars>();
}

/// The name in the encoding of the environment; nothing when no variable can have that name.
/// Without this check the value of another variable would be returned.
std::optional<std::string> encodeName(String const& name)
{
    auto bytes = encodeLocaleText(name);
    if (bytes && bytes->find_first_of(std::string{'=', '\0'}) != std::string::npos)
    {
        return std::nullopt;
    }
    return bytes;
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
    auto const key = encodeName(name);
    char const* const value = key ? std::getenv(key->c_str()) : nullptr;
    if (value == nullptr)
    {
        return defaultValue;
    }
    std::lock_guard<std::mutex> const lock(m_mutex);
    auto const cached = m_decoded.find(*key);
    if (cached != m_decoded.end() && cached->second.bytes == value)
    {
        return cached->second.text;
    }
    String const text = decodeValue(name, value);
    m_decoded[*key] = Decoded{value, text};
    return text;
}

} // namespace zel
