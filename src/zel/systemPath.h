#pragma once

#include <zel/String.h>
#include <zel/TPathImpl.h>

#include <string>

namespace zel
{

/// Throws a CError that names what could not be done, to which path, and why.
/// \param operation  what could not be done, as in "open the file"
/// \param reason     without a full stop
[[noreturn]] void throwFileError(char const* operation, String const& path, String const& reason);

/// The same with the system's words for the errno value \p error.
[[noreturn]] void throwFileError(char const* operation, String const& path, int error);

/// The path as the system takes it. Throws a CError when the locale's encoding lacks one of its
/// characters or when it holds a NUL: the system would take another path then.
std::string toSystemPath(char const* operation, TPathImpl<CUnixPathTraits> const& path);

/// The system's path without separators at its end; the root keeps its own.
std::string withoutTrailingSeparators(std::string path);

} // namespace zel
