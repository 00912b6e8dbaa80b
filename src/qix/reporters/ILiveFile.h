#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qix
{

/// A file of which readers see each change at once, also when the process is killed next.
class ILiveFile
{
public:
    virtual ~ILiveFile() = default;

    /// Puts a new file in the place of the old one: readers see one or the other. False when that
    /// is not possible; then the old one stays.
    virtual bool replace(std::string const& bytes) = 0;

    /// Overwrites some bytes, in no order that could be relied on.
    virtual void write(std::size_t offset, std::string_view bytes) = 0;

    /// Overwrites one byte, behind all that was written before and in front of all that follows.
    virtual void set(std::size_t offset, char byte) = 0;

    /// What is in the file.
    virtual std::string read() const = 0;

    /// Why it could not be written; empty when nothing has gone wrong.
    virtual std::string getError() const = 0;
};

} // namespace qix
