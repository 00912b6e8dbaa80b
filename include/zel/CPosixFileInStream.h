#pragma once

#include <zel/CPosixFileStream.h>

namespace zel
{

/// A file that is open for reading, from its start.
class ZEL_EXPORT CPosixFileInStream : public CPosixFileStream
{
public:
    /// Opens the file. A named pipe is waited for until somebody writes to it. Throws CError when
    /// the file is missing, unreadable or a folder.
    explicit CPosixFileInStream(TPathImpl<CUnixPathTraits> const& path);
    ~CPosixFileInStream() override;
};

} // namespace zel
