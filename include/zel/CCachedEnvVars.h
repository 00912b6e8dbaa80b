#pragma once

#include <zel/CBase.h>
#include <zel/CSafeGlobalGuard.h>
#include <zel/P.h>
#include <zel/String.h>

#include <map>
#include <mutex>
#include <string>

namespace zel
{

/// The environment variables of the process as text.
///
/// What is cached is the conversion: each call looks at the environment, so a variable that was
/// changed with setenv has its new value at once. Safe to use from several threads, as long as
/// none of them changes the environment meanwhile.
class ZEL_EXPORT CCachedEnvVars : public CBase
{
public:
    CCachedEnvVars();
    CCachedEnvVars(CCachedEnvVars const&) = delete;
    CCachedEnvVars& operator=(CCachedEnvVars const&) = delete;
    ~CCachedEnvVars() override;

    /// The object of the process, made on first use.
    static P<CCachedEnvVars> get();

    /// Records whether that object is being created or exists. Guarded by the global mutex.
    static CSafeGlobalGuard& globalInstanceGuard();

    /// The value of the variable \p name, decoded from the locale's encoding, or \p defaultValue
    /// when it is not set or no variable can have that name.
    /// Throws CError when the value's bytes are not valid in that encoding.
    String getVar(String const& name, String const& defaultValue) const;

private:
    struct Decoded
    {
        std::string bytes;
        String text;
    };

    mutable std::mutex m_mutex;
    mutable std::map<std::string, Decoded> m_decoded;
};

} // namespace zel
