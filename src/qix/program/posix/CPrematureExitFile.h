#pragma once

#include <string>

#include <sys/types.h>

namespace qix
{

/// A file that is there as long as this lives. Who started the process knows by it that the process
/// has ended before it was through, whatever its exit status says.
class CPrematureExitFile
{
public:
    /// Makes the file; an empty name stands for none.
    /// Throws std::runtime_error when it cannot be made.
    explicit CPrematureExitFile(std::string const& file);

    /// Removes it, unless a child of the process has come here.
    ~CPrematureExitFile();
    CPrematureExitFile(CPrematureExitFile const&) = delete;
    CPrematureExitFile& operator=(CPrematureExitFile const&) = delete;

private:
    std::string m_file;
    pid_t m_process;
};

} // namespace qix
