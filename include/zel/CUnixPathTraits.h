#pragma once

#include <zel/CPathTraitsBase.h>
#include <zel/CSafeGlobalGuard.h>
#include <zel/P.h>
#include <zel/String.h>

namespace zel
{

/// The syntax of Unix paths: components separated by "/", one root, which is "/" too.
///
/// Everything is safe to use from several threads. The separators are safe globals: a static
/// object's destructor must not ask for them, as it would wait for ever once they have gone.
class ZEL_EXPORT CUnixPathTraits : public CPathTraitsBase
{
public:
    /// The separator that is written between components. Throws CError when it could not be made.
    static P<String> getSep();

    /// All characters that separate components. Throws CError when they could not be made.
    static P<String> getAllSeps();

    /// True when \p text begins at the root.
    static bool isAbsolute(String const& text) noexcept;

    /// Where the first component starts, or -1 when the text has no root.
    /// \param text        the text of a path
    /// \param keepLength  receives the number of leading characters that are the root and stay as
    ///                    they are when the path is normalized; 0 without a root
    static int getRootLength(String const& text, int* keepLength) noexcept;

    /// Creates the value of getSep().
    static P<String> _createSepString();

    /// Creates the value of getAllSeps().
    static P<String> _createAllSepsString();

    /// Records whether the value of getSep() is being created or exists.
    static CSafeGlobalGuard& _sepGuard();

    /// Records whether the value of getAllSeps() is being created or exists.
    static CSafeGlobalGuard& _allSepsGuard();
};

} // namespace zel
