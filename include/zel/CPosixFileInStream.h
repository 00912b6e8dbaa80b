#pragma once

#include <zel/CPosixFileStream.h>

namespace zel
{

/// A file that is open for reading, from its start.
class ZEL_EXPORT CPosixFileInStream : public CPosixFileStream
{
public:
    /// Opens the file. Throws CError when it is missing, unreadable or a folder.
    explicit CPosixFileInStream(TPathImpl<CUnixPathTraits> const& path);
    ~CPosixFileInStream() override;
};

} // namespace zel
