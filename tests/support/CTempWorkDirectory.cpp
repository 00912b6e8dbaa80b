#include "CTempWorkDirectory.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace test
{

namespace
{

std::filesystem::path makeFolder()
{
    std::string pattern = std::filesystem::temp_directory_path() / "qix-test-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr)
    {
        throw std::system_error(errno, std::generic_category(), "mkdtemp " + pattern);
    }
    return std::filesystem::canonical(pattern);
}

} // namespace

CTempWorkDirectory::CTempWorkDirectory()
    : m_oldPath(std::filesystem::current_path()), m_path(makeFolder())
{
    std::filesystem::current_path(m_path);
}

CTempWorkDirectory::~CTempWorkDirectory()
{
    std::error_code ignored;
    std::filesystem::current_path(m_oldPath, ignored);
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace test
