#pragma once

#include <zel/CError.h>

#include <sys/types.h>

namespace qix
{

/// Thrown when another process runs tests in the folder. Its message tells the folder and the
/// process.
class CWorkFolderInUseError : public zel::CError
{
public:
    using zel::CError::CError;
};

/// While one lives, the folder that is the current one now belongs to this process: a second run in
/// it would write the same log. Runs within a run share the lock of their process.
///
/// What is locked is the folder itself, by flock(): no file appears, and a test that opens and
/// closes what lies in the folder does not lose the lock. It ends with the process, however that
/// ends, since children close it when they are forked, and programs when they are started. A
/// process that a test makes by the bare system call keeps it as long as it lives.
class CWorkFolderLock
{
public:
    /// A folder that cannot be locked at all, as on some network file systems, is used without.
    /// Throws CWorkFolderInUseError.
    CWorkFolderLock();
    CWorkFolderLock(CWorkFolderLock const&) = delete;
    CWorkFolderLock& operator=(CWorkFolderLock const&) = delete;
    ~CWorkFolderLock();

private:
    bool isSharedWithOuter() const noexcept;
    static void releaseInChild() noexcept;

    int m_folder = -1; ///< its descriptor; -1 when there is nothing to release
    dev_t m_device = 0;
    ino_t m_inode = 0;
    CWorkFolderLock* m_outer = nullptr; ///< the one that was made before
};

} // namespace qix
