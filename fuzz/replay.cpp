/// Stands in for libFuzzer where there is none: runs a target once with each file that the
/// arguments name, and with each file of the folders that they name.

#include "fuzz.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace
{

namespace fs = std::filesystem;

std::vector<fs::path> filesOf(fs::path const& place)
{
    if (!fs::is_directory(place))
    {
        return {place};
    }
    std::vector<fs::path> files;
    for (fs::directory_entry const& entry : fs::directory_iterator(place))
    {
        files.push_back(entry.path());
    }
    return files;
}

void replay(fs::path const& file)
{
    std::ifstream stream(file, std::ios::binary);
    fuzz::require(stream.good(), "can be opened: " + file.string());
    std::vector<char> const bytes{std::istreambuf_iterator<char>(stream), {}};
    std::fprintf(stderr, "%s\n", file.filename().c_str());
    LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i)
    {
        for (fs::path const& file : filesOf(argv[i]))
        {
            replay(file);
            ++count;
        }
    }
    std::printf("%zu inputs\n", count);
    return count == 0 ? 1 : 0;
}
