#pragma once

#include <zel/String.h>
#include <zel/TPathImpl.h>

#include <string>

namespace zel
{

/// Throws a CError that names the failed operation, the path and the reason.
/// \param operation  what failed, as in "open the file"
/// \param reason     without a full stop
[[noreturn]] void throwFileError(char const* operation, String const& path, String const& reason);

/// The same with the system's message for the errno value \p error.
[[noreturn]] void throwFileError(char const* operation, String const& path, int error);

/// The path in the system's encoding. Throws a CError when the locale's encoding lacks one of its
/// characters or when it contains a NUL: the system would use another path then.
std::string toSystemPath(char const* operation, TPathImpl<CUnixPathTraits> const& path);

/// The system's path without separators at its end; the root keeps its own.
std::string withoutTrailingSeparators(std::string path);

} // namespace zel
