#pragma once

#include <zel/CError.h>

#include <string>

namespace test
{

/// The message of the error that the work throws; empty when it throws none.
template <typename Work>
std::string errorOf(Work const& work)
{
    try
    {
        work();
    }
    catch (zel::CError const& e)
    {
        return e.what();
    }
    return std::string();
}

} // namespace test
