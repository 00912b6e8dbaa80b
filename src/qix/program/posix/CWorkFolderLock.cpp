#include "program/posix/CWorkFolderLock.h"

#include "guards/posix/CForkLock.h"
#include "text/decodedText.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace qix
{

namespace
{

std::mutex innermostMutex;
CForkLock const innermostLockedWhileForking(innermostMutex);
CWorkFolderLock* innermost = nullptr;

/// A line of /proc/locks such as "3: FLOCK  ADVISORY  WRITE 25602 fe:00:11133851 0 EOF".
struct Lock
{
    explicit Lock(std::string const& line)
    {
        std::istringstream words(line);
        std::string ignored;
        unsigned deviceMajor = 0;
        unsigned deviceMinor = 0;
        char colon = '\0';
        words >> ignored >> type >> ignored >> ignored >> process;
        words >> std::hex >> deviceMajor >> colon >> deviceMinor >> colon >> std::dec >> inode;
        device = makedev(deviceMajor, deviceMinor);
    }

    std::string type;
    pid_t process = 0;
    dev_t device = 0;
    ino_t inode = 0;
};

/// The process that holds the lock, or 0 when the system does not tell. Some file systems show
/// another device there than stat() does; then the inode has to do.
pid_t findHolder(dev_t device, ino_t inode)
{
    std::ifstream locks("/proc/locks");
    pid_t found = 0;
    for (std::string line; std::getline(locks, line);)
    {
        Lock const lock(line);
        bool const isCandidate = lock.type == "FLOCK" && lock.inode == inode && lock.process > 0;
        if (isCandidate && (found == 0 || lock.device == device))
        {
            found = lock.process;
        }
    }
    return found;
}

[[noreturn]] void throwInUse(pid_t holder)
{
    std::error_code ignored;
    std::string const folder = std::filesystem::current_path(ignored).string();
    std::string const process =
        holder > 0 ? "process " + std::to_string(holder) : std::string("another process");
    throw CWorkFolderInUseError(decodedText("the working folder '" + folder +
                                            "' is in use: " + process +
                                            " is running tests in it. Let "
                                            "QIX_TESTWORKDIR name another folder."));
}

} // namespace

CWorkFolderLock::CWorkFolderLock()
{
    static int const isHandlerSet = pthread_atfork(nullptr, nullptr, &releaseInChild);
    static_cast<void>(isHandlerSet);
    std::lock_guard<std::mutex> const lock(innermostMutex);
    struct stat status = {};
    int const folder = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder != -1 && fstat(folder, &status) == 0)
    {
        m_device = status.st_dev;
        m_inode = status.st_ino;
    }
    if (folder == -1 || isSharedWithOuter() || flock(folder, LOCK_EX | LOCK_NB) == 0)
    {
        m_folder = folder;
        m_outer = std::exchange(innermost, this);
        return;
    }
    bool const isInUse = errno == EWOULDBLOCK;
    close(folder);
    if (isInUse)
    {
        throwInUse(findHolder(m_device, m_inode));
    }
    m_outer = std::exchange(innermost, this);
}

CWorkFolderLock::~CWorkFolderLock()
{
    std::lock_guard<std::mutex> const lock(innermostMutex);
    innermost = m_outer;
    if (m_folder != -1)
    {
        close(m_folder);
    }
}

bool CWorkFolderLock::isSharedWithOuter() const noexcept
{
    for (CWorkFolderLock const* other = innermost; other != nullptr; other = other->m_outer)
    {
        if (other->m_folder != -1 && other->m_device == m_device && other->m_inode == m_inode)
        {
            return true;
        }
    }
    return false;
}

/// A run in the child is another run.
void CWorkFolderLock::releaseInChild() noexcept
{
    for (CWorkFolderLock* lock = innermost; lock != nullptr; lock = lock->m_outer)
    {
        if (lock->m_folder != -1)
        {
            close(std::exchange(lock->m_folder, -1));
        }
    }
}

} // namespace qix
