#include <zel/filesystem.h>

#include "CFileDescriptor.h"
#include "localeText.h"
#include "systemPath.h"

#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zel
{

namespace
{

constexpr char const operation[] = "remove the folder";

struct DirectoryCloser
{
    void operator()(DIR* directory) const noexcept { closedir(directory); }
};

using Directory = std::unique_ptr<DIR, DirectoryCloser>;

/// What tells one folder from all others, whatever its name.
struct Identity
{
    dev_t device;
    ino_t inode;

    bool operator==(Identity const& other) const noexcept
    {
        return device == other.device && inode == other.inode;
    }
};

/// One of the folders on the way down, the current one being the last.
struct Level
{
    std::string name; ///< in the folder above
    Identity identity;
    std::vector<std::string> folders; ///< inside it, still to be removed
};

bool isDots(std::string const& name)
{
    return name == "." || name == "..";
}

int openFolder(int parent, std::string const& name)
{
    return openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

/// Removes one folder with everything in it.
///
/// It walks down and up with the descriptor of the current folder alone, so that the depth of the
/// tree costs no descriptors and no stack. On the way up ".." is checked to be the folder that it
/// came from: a folder that is moved elsewhere meanwhile does not take the removal with it.
class CFolderRemover
{
public:
    /// \param path    tells the folder in errors
    /// \param parent  the folder above it
    CFolderRemover(String const& path, CFileDescriptor parent)
        : m_path(path), m_parent(std::move(parent))
    {
    }

    void remove(std::string const& name)
    {
        enter(name);
        while (!m_levels.empty())
        {
            std::vector<std::string>& folders = m_levels.back().folders;
            if (folders.empty())
            {
                leave();
                continue;
            }
            std::string const next = std::move(folders.back());
            folders.pop_back();
            enter(next);
        }
    }

private:
    int current() const noexcept { return m_levels.empty() ? m_parent.get() : m_current.get(); }

    /// Goes into a folder of the current one and removes the files in it.
    void enter(std::string const& name)
    {
        CFileDescriptor folder = open(name);
        if (!folder.isOpen())
        {
            return;
        }
        struct stat status = {};
        if (fstat(folder.get(), &status) != 0)
        {
            fail(name, errno);
        }
        // Where this fails the removal of what is inside tells why.
        if ((status.st_mode & S_IRWXU) != S_IRWXU)
        {
            static_cast<void>(fchmod(folder.get(), status.st_mode | S_IRWXU));
        }
        m_current = std::move(folder);
        m_levels.push_back(Level{name, {status.st_dev, status.st_ino}, {}});
        removeFiles();
    }

    /// Nothing is open when the folder has gone, or has become something that is not a folder.
    CFileDescriptor open(std::string const& name)
    {
        CFileDescriptor folder(openFolder(current(), name));
        if (!folder.isOpen() && errno == EACCES)
        {
            // Where this fails too, opening the folder once more tells why.
            static_cast<void>(fchmodat(current(), name.c_str(), S_IRWXU, AT_SYMLINK_NOFOLLOW));
            folder = CFileDescriptor(openFolder(current(), name));
        }
        if (!folder.isOpen() && (errno == ENOTDIR || errno == ELOOP))
        {
            removeFile(name);
        }
        else if (!folder.isOpen() && errno != ENOENT)
        {
            fail(name, errno);
        }
        return folder;
    }

    /// Removes what is no folder from the current folder, and notes the folders.
    void removeFiles()
    {
        Directory const directory = openForReading();
        for (;;)
        {
            errno = 0;
            dirent const* const entry = readdir(directory.get());
            if (entry == nullptr)
            {
                break;
            }
            std::string const name = entry->d_name;
            if (!isDots(name) && !removeFile(name))
            {
                m_levels.back().folders.push_back(name);
            }
        }
        if (errno != 0)
        {
            fail("", errno);
        }
    }

    Directory openForReading()
    {
        CFileDescriptor descriptor(
            openat(m_current.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        Directory directory(descriptor.isOpen() ? fdopendir(descriptor.get()) : nullptr);
        if (directory == nullptr)
        {
            fail("", errno);
        }
        static_cast<void>(descriptor.release());
        return directory;
    }

    /// \return false when it is a folder
    bool removeFile(std::string const& name)
    {
        if (unlinkat(current(), name.c_str(), 0) == 0 || errno == ENOENT)
        {
            return true;
        }
        if (errno != EISDIR)
        {
            fail(name, errno);
        }
        return false;
    }

    /// Goes up and removes the folder that it comes from.
    void leave()
    {
        CFileDescriptor above = m_levels.size() > 1 ? openAbove() : CFileDescriptor();
        std::string const name = std::move(m_levels.back().name);
        m_levels.pop_back();
        m_current = std::move(above);
        if (unlinkat(current(), name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT)
        {
            return;
        }
        // Somebody has put something in since it was read.
        constexpr int patience = 100;
        if (errno != ENOTEMPTY || ++m_timesFilledAgain > patience)
        {
            fail(name, errno);
        }
        enter(name);
    }

    CFileDescriptor openAbove()
    {
        CFileDescriptor above(openFolder(m_current.get(), ".."));
        struct stat status = {};
        if (!above.isOpen() || fstat(above.get(), &status) != 0)
        {
            fail("..", errno);
        }
        Level const& expected = m_levels[m_levels.size() - 2];
        if (!(expected.identity == Identity{status.st_dev, status.st_ino}))
        {
            throwFileError(operation, m_path, "a folder inside it was moved away meanwhile");
        }
        return above;
    }

    /// Throws the error of an entry of the current folder; no name is the current folder itself.
    [[noreturn]] void fail(std::string const& name, int error) const
    {
        std::string entry;
        for (std::size_t i = 1; i < m_levels.size(); ++i)
        {
            entry += "/" + m_levels[i].name;
        }
        if (!name.empty() && !m_levels.empty())
        {
            entry += "/" + name;
        }
        throwFileError(operation, m_path + decodeForMessage(entry), error);
    }

    String const m_path;
    CFileDescriptor const m_parent;
    CFileDescriptor m_current;
    std::vector<Level> m_levels;
    int m_timesFilledAgain = 0;
};

/// The folder above the last component, and that component; the root is its own folder above.
std::pair<std::string, std::string> splitPath(std::string const& path)
{
    std::size_t const separator = path.rfind('/');
    if (separator == std::string::npos)
    {
        return {".", path};
    }
    std::string const name = path.substr(separator + 1);
    return {path.substr(0, separator + 1), name.empty() ? "/" : name};
}

bool isNothingThere(int error)
{
    return error == ENOENT || error == ENOTDIR;
}

/// The kind of what stands at the name, or nothing when nothing does.
std::optional<mode_t> kindOf(String const& path, int parent, std::string const& name)
{
    struct stat status = {};
    if (fstatat(parent, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
    {
        return status.st_mode & S_IFMT;
    }
    if (!isNothingThere(errno))
    {
        throwFileError(operation, path, errno);
    }
    return std::nullopt;
}

void removeLink(String const& path, int parent, std::string const& name)
{
    if (unlinkat(parent, name.c_str(), 0) != 0 && errno != ENOENT)
    {
        throwFileError(operation, path, errno);
    }
}

} // namespace

void unlinkFolder(TPathImpl<CUnixPathTraits> const& path)
{
    String const& text = path.getText();
    auto const [parentPath, name] =
        splitPath(withoutTrailingSeparators(toSystemPath(operation, path)));
    if (isDots(name))
    {
        throwFileError(operation, text, "it is named by '.' or '..'");
    }
    CFileDescriptor parent(open(parentPath.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!parent.isOpen() && !isNothingThere(errno))
    {
        throwFileError(operation, text, errno);
    }
    auto const kind = parent.isOpen() ? kindOf(text, parent.get(), name) : std::nullopt;
    if (kind == S_IFDIR)
    {
        CFolderRemover(text, std::move(parent)).remove(name);
    }
    else if (kind == S_IFLNK)
    {
        removeLink(text, parent.get(), name);
    }
    else if (kind)
    {
        throwFileError(operation, text, "it is a file");
    }
}

} // namespace zel
