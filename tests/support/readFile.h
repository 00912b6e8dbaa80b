#pragma once

#include <filesystem>
#include <string>

namespace test
{

/// All bytes of a file. Throws std::system_error when it cannot be opened.
std::string readFile(std::filesystem::path const& path);

} // namespace test
