#pragma once

#include <cstdio>
#include <string>

namespace test
{

/// Takes what the process writes to standard output while it lives.
class COutputCapture
{
public:
    COutputCapture();
    COutputCapture(COutputCapture const&) = delete;
    COutputCapture& operator=(COutputCapture const&) = delete;
    ~COutputCapture();

    /// Everything that has been written so far, including what nobody has flushed yet.
    std::string getText() const;

    /// What has left the process so far: text that waits in a buffer is not part of it.
    std::string getFlushedText() const;

private:
    std::FILE* m_file;
    int m_oldOutput;
};

} // namespace test
