#pragma once

#include <filesystem>

namespace test
{

/// Makes an empty folder the current directory while it lives, and removes it with all it holds.
class CTempWorkDirectory
{
public:
    CTempWorkDirectory();
    CTempWorkDirectory(CTempWorkDirectory const&) = delete;
    CTempWorkDirectory& operator=(CTempWorkDirectory const&) = delete;
    ~CTempWorkDirectory();

    /// Absolute, without symbolic links.
    std::filesystem::path const& getPath() const noexcept { return m_path; }

private:
    std::filesystem::path m_oldPath;
    std::filesystem::path m_path;
};

} // namespace test
