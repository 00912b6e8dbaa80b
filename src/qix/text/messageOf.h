#pragma once

#include <exception>

namespace qix
{

/// The message of an exception; what() of some classes returns null.
inline char const* messageOf(std::exception const& e) noexcept
{
    char const* const message = e.what();
    return message == nullptr ? "(no message)" : message;
}

} // namespace qix
