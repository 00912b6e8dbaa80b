#include <zel/CPosixFileInStream.h>
#include <zel/CPosixFileStream.h>

#include "CFileDescriptor.h"
#include "systemPath.h"

#include <cerrno>
#include <cstddef>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zel
{

namespace
{

constexpr char const openOperation[] = "open the file";
constexpr char const lengthOperation[] = "determine the length of the file";
constexpr char const readOperation[] = "read the file";

int openFile(TPathImpl<CUnixPathTraits> const& path, int flags)
{
    std::string const bytes = toSystemPath(openOperation, path);
    CFileDescriptor file(
        static_cast<int>(TEMP_FAILURE_RETRY(open(bytes.c_str(), flags | O_CLOEXEC | O_NOCTTY))));
    struct stat status = {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0)
    {
        throwFileError(openOperation, path.getText(), errno);
    }
    if (S_ISDIR(status.st_mode))
    {
        throwFileError(openOperation, path.getText(), EISDIR);
    }
    return file.release();
}

} // namespace

CPosixFileStream::CPosixFileStream(TPathImpl<CUnixPathTraits> const& path, int flags)
    : m_path(path), m_descriptor(openFile(path, flags))
{
}

CPosixFileStream::~CPosixFileStream()
{
    close(m_descriptor);
}

std::int64_t CPosixFileStream::getLength() const
{
    struct stat status = {};
    if (fstat(m_descriptor, &status) != 0)
    {
        throwFileError(lengthOperation, m_path.getText(), errno);
    }
    // A pipe reports the length 0, whatever is in it. Unlike a device it does not support seeking.
    if (!S_ISREG(status.st_mode) && lseek(m_descriptor, 0, SEEK_CUR) < 0)
    {
        throwFileError(lengthOperation, m_path.getText(), errno);
    }
    return status.st_size;
}

int CPosixFileStream::read(void* buffer, int count)
{
    int done = 0;
    while (done < count)
    {
        ssize_t const length =
            TEMP_FAILURE_RETRY(::read(m_descriptor, static_cast<char*>(buffer) + done,
                                      static_cast<std::size_t>(count - done)));
        if (length < 0)
        {
            throwFileError(readOperation, m_path.getText(), errno);
        }
        if (length == 0)
        {
            break;
        }
        done += static_cast<int>(length);
    }
    return done;
}

CPosixFileInStream::CPosixFileInStream(TPathImpl<CUnixPathTraits> const& path)
    : CPosixFileStream(path, O_RDONLY)
{
}

CPosixFileInStream::~CPosixFileInStream() = default;

} // namespace zel
