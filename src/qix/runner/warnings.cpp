#include "runner/warnings.h"

#include <fstream>

namespace qix
{

namespace
{

std::string& warningsFile()
{
    static std::string file;
    return file;
}

} // namespace

void setWarningsFile(std::string const& file)
{
    warningsFile() = file;
}

void noteWarning(std::string const& warning)
{
    if (!warningsFile().empty())
    {
        std::ofstream(warningsFile(), std::ios::binary | std::ios::app) << warning << '\n';
    }
}

} // namespace qix
