#pragma once

#include "reporters/ILiveFile.h"

#include <string>

namespace qix
{

/// A live file that is a part of the memory, so that writing costs no system call; where the file
/// system does not offer that, it is written by one call each.
class CMappedFile : public ILiveFile
{
public:
    /// \param file  made by replace()
    explicit CMappedFile(std::string const& file);
    CMappedFile(CMappedFile const&) = delete;
    CMappedFile& operator=(CMappedFile const&) = delete;
    ~CMappedFile() override;

    bool replace(std::string const& bytes) override;
    void write(std::size_t offset, std::string_view bytes) override;
    void set(std::size_t offset, char byte) override;
    std::string read() const override;

    std::string getError() const override { return m_error; }

private:
    bool fail(char const* why);
    bool makeFile(std::string const& file, std::string const& bytes);
    bool writeAll(std::size_t offset, std::string_view bytes) const;
    void release() noexcept;

    std::string m_name; ///< behind all symbolic links
    std::string m_error;
    int m_file = -1;
    char* m_memory = nullptr;
    std::size_t m_size = 0;
};

} // namespace qix
