#pragma once

#include <zel/CBase.h>
#include <zel/String.h>
#include <zel/TPathImpl.h>

#include <cstdint>

namespace zel
{

/// An open file. It belongs to one thread at a time.
class ZEL_EXPORT CPosixFileStream : public CBase
{
public:
    CPosixFileStream(CPosixFileStream const&) = delete;
    CPosixFileStream& operator=(CPosixFileStream const&) = delete;

    /// Closes the file.
    ~CPosixFileStream() override;

    /// The length of the file in bytes. Throws CError when it has none, as a pipe does.
    std::int64_t getLength() const;

    /// Reads up to \p count bytes into \p buffer, fewer only where the file ends. Interruptions
    /// by signals do not end it.
    /// \return the number of bytes read; 0 when \p count is not above 0
    /// Throws CError when the system cannot read.
    int read(void* buffer, int count);

protected:
    /// Opens the file \p path with \p flags as for open(2), and not for child processes.
    /// Throws CError when it cannot be opened or is a folder.
    CPosixFileStream(TPathImpl<CUnixPathTraits> const& path, int flags);

private:
    TPathImpl<CUnixPathTraits> const m_path;
    int m_descriptor;
};

} // namespace zel
