#pragma once

#include <cstdlib>

namespace zel
{

/// Frees what comes from malloc().
struct FreeDeleter
{
    void operator()(char* text) const noexcept { std::free(text); }
};

} // namespace zel
