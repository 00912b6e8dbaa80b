#include <zel/filesystem.h>

#include "CFileDescriptor.h"
#include "isDots.h"
#include "systemPath.h"

#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace zel
{

namespace
{

namespace fs = std::filesystem;

constexpr char const operation[] = "remove the folder";

struct DirectoryCloser
{
    void operator()(DIR* directory) const noexcept { closedir(directory); }
};

using Directory = std::unique_ptr<DIR, DirectoryCloser>;

int openFolder(int parent, char const* name)
{
    return openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

Directory openForReading(int parent, char const* name)
{
    CFileDescriptor folder(openFolder(parent, name));
    if (!folder.isOpen() && errno == EACCES)
    {
        static_cast<void>(fchmodat(parent, name, S_IRWXU, AT_SYMLINK_NOFOLLOW));
        folder = CFileDescriptor(openFolder(parent, name));
    }
    Directory directory(folder.isOpen() ? fdopendir(folder.get()) : nullptr);
    if (directory != nullptr)
    {
        static_cast<void>(folder.release());
    }
    return directory;
}

/// Gives the owner all rights to a folder and those inside it. What fails here fails the removal,
/// which tells why.
///
/// Goes by descriptors: a path would lead out of the folder once another process has swapped a
/// component for a link.
void openUp(int parent, char const* name)
{
    Directory const directory = openForReading(parent, name);
    if (directory == nullptr)
    {
        return;
    }
    int const folder = dirfd(directory.get());
    static_cast<void>(fchmod(folder, S_IRWXU));
    while (dirent const* const entry = readdir(directory.get()))
    {
        if (entry->d_type != DT_REG && !isDots(std::string(entry->d_name)))
        {
            openUp(folder, entry->d_name);
        }
    }
}

/// std::filesystem::remove_all() goes by descriptors and follows no links either. It stops at
/// folders that the owner may not enter or change, and at what another process removes meanwhile.
std::error_code removeTree(std::string const& path)
{
    std::error_code error;
    fs::remove_all(path, error);
    if (error)
    {
        openUp(AT_FDCWD, path.c_str());
        fs::remove_all(path, error);
    }
    return error;
}

} // namespace

void unlinkFolder(TPathImpl<CUnixPathTraits> const& path)
{
    String const& text = path.getText();
    std::string const bytes = withoutTrailingSeparators(toSystemPath(operation, path));
    if (isDots(fs::path(bytes).filename()))
    {
        throwFileError(operation, text, "the path ends in '.' or '..'");
    }
    std::error_code error;
    fs::file_type const type = fs::symlink_status(bytes, error).type();
    if (type == fs::file_type::not_found)
    {
        return;
    }
    if (!error && type != fs::file_type::directory && type != fs::file_type::symlink)
    {
        throwFileError(operation, text, "it is a file");
    }
    if (!error)
    {
        error = removeTree(bytes);
    }
    if (error)
    {
        throwFileError(operation, text, error.value());
    }
}

} // namespace zel
