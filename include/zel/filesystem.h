#pragma once

#include <zel/String.h>
#include <zel/TPathImpl.h>

namespace zel
{

/// Removes the folder \p path with everything in it; does nothing when nothing is there.
///
/// Symbolic links are never followed, also when another process swaps a folder for a link
/// meanwhile: links inside are removed as links, and so is one at the path itself. Folders whose
/// owner may not enter or change them are opened up.
/// Throws CError when the path leads to a file, which stays, when it ends in "." or "..", and when
/// something cannot be removed, for example because another process adds files; what was removed
/// before stays removed.
/// Safe to call from any thread, and while static objects are destroyed.
ZEL_EXPORT void unlinkFolder(TPathImpl<CUnixPathTraits> const& path);

/// Creates a folder and those above it that are missing; does nothing when it is there.
/// \param path  the folder
/// \param mode  the permission bits of the new folder, from which the umask takes some away; the
///              folders above it also get those that the owner needs to go through them
/// Throws CError when a file is in the way or a folder cannot be made; those that were made before
/// stay. Safe to call from any thread.
ZEL_EXPORT void ensureFolderExists(TPathImpl<CUnixPathTraits> const& path, int mode);

/// The current folder of the process, absolute. Throws CError when it has been removed, and when
/// its bytes are not valid in the locale's encoding. Safe to call from any thread.
ZEL_EXPORT String getCurrentWorkDirectoryAsString();

} // namespace zel
