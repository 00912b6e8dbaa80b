#pragma once

#include <string>
#include <string_view>

namespace qix
{

/// A file that is written anew from its beginning; what is appended is there at once.
class CAppendedFile
{
public:
    explicit CAppendedFile(std::string const& file);
    CAppendedFile(CAppendedFile const&) = delete;
    CAppendedFile& operator=(CAppendedFile const&) = delete;
    ~CAppendedFile();

    /// Does nothing once something has gone wrong.
    void append(std::string_view bytes);

    /// Why not everything was written; empty when nothing has gone wrong.
    std::string const& getError() const noexcept { return m_error; }

private:
    int m_file;
    std::string m_error;
};

} // namespace qix
