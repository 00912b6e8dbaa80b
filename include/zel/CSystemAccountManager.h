#pragma once

#include <zel/CBase.h>
#include <zel/CSafeGlobalGuard.h>
#include <zel/P.h>
#include <zel/String.h>

namespace zel
{

/// The accounts of the system, as far as the process's own user goes. It keeps no answers: a
/// process that changes its user gets new ones. Safe to use from several threads.
class ZEL_EXPORT CSystemAccountManager : public CBase
{
public:
    CSystemAccountManager();
    CSystemAccountManager(CSystemAccountManager const&) = delete;
    CSystemAccountManager& operator=(CSystemAccountManager const&) = delete;
    ~CSystemAccountManager() override;

    /// The object of the process, made on first use.
    static P<CSystemAccountManager> get();

    /// Records whether that object is being created or exists. Guarded by the global mutex.
    static CSafeGlobalGuard& globalInstanceGuard();

    /// The name of the effective user in the account database.
    /// Throws CError when the user has no entry there, when the database cannot be read, and when
    /// the name's bytes are not valid in the locale's encoding.
    String getProcessUserName() const;

    /// True when the effective user id is 0.
    bool isProcessUserAdmin() const noexcept;
};

} // namespace zel
