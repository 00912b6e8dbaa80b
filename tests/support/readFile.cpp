#include "readFile.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

namespace test
{

std::string readFile(std::filesystem::path const& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
    {
        throw std::system_error(errno, std::generic_category(), path.string());
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace test
