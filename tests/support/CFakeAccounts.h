#pragma once

#include <cstddef>
#include <string>

#include <sys/types.h>

namespace test
{

/// Stands in for the system's account database and for the process's user while it lives.
///
/// The test executable's getpwuid_r and geteuid come before those of the C library, also for the
/// libraries that it uses.
class CFakeAccounts
{
public:
    /// \param userId       the effective user id of the process
    /// \param userName     its name in the database
    explicit CFakeAccounts(uid_t userId, std::string userName = std::string());
    CFakeAccounts(CFakeAccounts const&) = delete;
    CFakeAccounts& operator=(CFakeAccounts const&) = delete;
    ~CFakeAccounts();

    uid_t m_userId;
    std::string m_userName;
    bool m_hasEntry = true;
    int m_error = 0;              ///< what the database answers instead of an entry
    int m_interruptions = 0;      ///< so many queries are interrupted by a signal
    std::size_t m_bufferSize = 0; ///< queries with less room are told that it is too little
    int m_queries = 0;
};

} // namespace test
