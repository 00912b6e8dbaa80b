#include "runner/posix/logFile.h"

#include "guards/posix/CForkLock.h"
#include "guards/posix/runNotes.h"
#include "text/decodedText.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qix
{

namespace
{

struct OpenLog
{
    std::FILE* file;
    dev_t device;
    ino_t inode;
};

using FilePointer = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::atomic<int> protections = 0;

std::mutex openLogsMutex;
CForkLock const openLogsLockedWhileForking(openLogsMutex);
std::vector<OpenLog> openLogs;

void noteOpenLog(std::FILE* log)
{
    struct stat status = {};
    if (log != nullptr && fstat(fileno(log), &status) == 0)
    {
        std::lock_guard<std::mutex> const lock(openLogsMutex);
        openLogs.push_back({log, status.st_dev, status.st_ino});
    }
}

bool isOpenLog(struct stat const& status)
{
    std::lock_guard<std::mutex> const lock(openLogsMutex);
    return std::any_of(openLogs.begin(), openLogs.end(),
                       [&status](OpenLog const& log)
                       { return log.device == status.st_dev && log.inode == status.st_ino; });
}

/// Where the logs of which folder are opened.
struct Diversion
{
    std::filesystem::path from;
    std::filesystem::path to;
};

Diversion& diversion()
{
    static Diversion only;
    return only;
}

/// Empty when the folder is gone.
std::filesystem::path currentFolder()
{
    std::error_code ignored;
    return std::filesystem::current_path(ignored);
}

/// A test that runs a runner of its own in another folder has its log there.
std::string pathOfLog(char const* name)
{
    bool const isDiverted = !diversion().to.empty() && diversion().from == currentFolder();
    return isDiverted ? (diversion().to / name).string() : name;
}

std::string folderOf(std::string const& path)
{
    std::string const folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

/// What the owner of the folder has put there, nobody else can lose. On some network file systems
/// all files belong to one user, whoever makes them.
bool belongsToSomebodyElse(std::string const& path, struct stat const& status)
{
    struct stat folder = {};
    return status.st_uid != geteuid() &&
           (stat(folderOf(path).c_str(), &folder) != 0 || status.st_uid != folder.st_uid);
}

/// Null for a file that may be written, and for what cannot be opened anyway.
char const* reasonToRefuse(std::string const& path, struct stat const& status)
{
    switch (status.st_mode & S_IFMT)
    {
    case S_IFLNK:
        return "it is a symbolic link";
    case S_IFIFO:
        return "it is a named pipe";
    case S_IFCHR:
    case S_IFBLK:
        return "it is a device";
    case S_IFREG:
        if (isOpenLog(status))
        {
            return "another run of this process is writing it";
        }
        return belongsToSomebodyElse(path, status) ? "it belongs to another user" : nullptr;
    default:
        return nullptr;
    }
}

[[noreturn]] void throwRefused(std::string const& path, char const* reason)
{
    std::string const whole = path[0] == '/' ? path : currentFolder().string() + "/" + path;
    throw CLogRefusedError(decodedText("the log '" + whole + "' is refused: " + reason +
                                       ". Let QIX_TESTWORKDIR name another folder."));
}

/// Looks at what it has opened, since the name may lead to another file a moment later. Nothing
/// waits for the reader of a pipe, and nothing is emptied before the look.
std::FILE* openProtected(std::string const& path)
{
    constexpr mode_t readableAndWritable = 0666;
    int const descriptor = open(
        path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, readableAndWritable);
    FilePointer log(descriptor == -1 ? nullptr : fdopen(descriptor, "w"), &std::fclose);
    struct stat status = {};
    bool const isThere =
        log == nullptr ? lstat(path.c_str(), &status) == 0 : fstat(descriptor, &status) == 0;
    char const* const reason = isThere ? reasonToRefuse(path, status) : nullptr;
    if (reason != nullptr)
    {
        throwRefused(path, reason);
    }
    bool const isEmpty = log != nullptr && ftruncate(descriptor, 0) == 0;
    return isEmpty ? log.release() : nullptr;
}

} // namespace

CLogProtection::CLogProtection() noexcept
{
    ++protections;
}

CLogProtection::~CLogProtection()
{
    --protections;
}

void divertLogs(std::string const& folder)
{
    diversion() = {currentFolder(), folder};
}

std::FILE* openLogFile(char const* name)
{
    std::string const path = pathOfLog(name);
    std::FILE* const log = protections > 0 ? openProtected(path) : std::fopen(path.c_str(), "w");
    if (log != nullptr)
    {
        // Each text leaves the process at once; in a buffer it would only stop over.
        std::setvbuf(log, nullptr, _IONBF, 0);
    }
    noteOpenLog(log);
    noteLogOpened(log);
    return log;
}

void closeLogFile(std::FILE* log)
{
    noteLogClosed(log);
    {
        std::lock_guard<std::mutex> const lock(openLogsMutex);
        openLogs.erase(std::remove_if(openLogs.begin(), openLogs.end(),
                                      [log](OpenLog const& other) { return other.file == log; }),
                       openLogs.end());
    }
    std::fclose(log);
}

} // namespace qix
