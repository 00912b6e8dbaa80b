#include "supervisor/PrintedText.h"

#include <cstdio>

namespace qix
{

void PrintedText::print() const
{
    std::fwrite(out.data(), 1, out.size(), stdout);
    std::fwrite(err.data(), 1, err.size(), stderr);
}

} // namespace qix
