#include <zel/CError.h>
#include <zel/filesystem.h>

#include "FreeDeleter.h"
#include "localeText.h"
#include "systemPath.h"

#include <cerrno>
#include <memory>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace zel
{

namespace
{

constexpr char const ensureOperation[] = "create the folder";
constexpr char const currentOperation[] = "determine the current folder";

bool isFolder(std::string const& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void ensureOneFolder(String const& wholePath, std::string const& path, mode_t mode)
{
    if (isFolder(path) || mkdir(path.c_str(), mode) == 0)
    {
        return;
    }
    int const error = errno;
    // Another process may have made it since the check.
    if (isFolder(path))
    {
        return;
    }
    if (error == EEXIST)
    {
        throwFileError(ensureOperation, wholePath,
                       "a file is in the way: '" + decodeForMessage(path) + "'");
    }
    throwFileError(ensureOperation, wholePath, error);
}

} // namespace

void ensureFolderExists(TPathImpl<CUnixPathTraits> const& path, int mode)
{
    std::string const bytes = withoutTrailingSeparators(toSystemPath(ensureOperation, path));
    constexpr mode_t passableByOwner = S_IWUSR | S_IXUSR;
    for (std::size_t end = bytes.find('/', 1); end != std::string::npos;
         end = bytes.find('/', end + 1))
    {
        ensureOneFolder(path.getText(), bytes.substr(0, end),
                        static_cast<mode_t>(mode) | passableByOwner);
    }
    ensureOneFolder(path.getText(), bytes, static_cast<mode_t>(mode));
}

String getCurrentWorkDirectoryAsString()
{
    std::unique_ptr<char, FreeDeleter> const bytes(getcwd(nullptr, 0));
    if (bytes == nullptr)
    {
        throwFileError(currentOperation, ".", errno);
    }
    if (auto const text = decodeLocaleText(bytes.get()))
    {
        return *text;
    }
    throwFileError(currentOperation, decodeForMessage(bytes.get()),
                   "its bytes are not valid in the encoding of the locale");
}

} // namespace zel
