#pragma once

#include <zel/CBase.h>
#include <zel/CUnixPathTraits.h>
#include <zel/String.h>

namespace zel
{

// Nobody deletes it as the base class without a virtual destructor, of which -Weffc++ warns.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// A file-system path: a text, and whether that text is known to be absolute and normalized.
///
/// Paths are values. They are joined and normalized as texts, without a look at the file system:
/// "a/.." is the empty path even where "a" is a link. Distinct objects may be used on several
/// threads at once. \p Traits is the syntax of the path.
template <typename Traits>
class ZEL_EXPORT TPathImpl : public CBase, public Traits
{
public:
    /// The empty path.
    TPathImpl();

    /// A path of any text, not known to be normalized.
    TPathImpl(String const& text);

    /// A path of the ISO-8859-1 text \p bytes, not known to be normalized; null gives the empty
    /// path.
    TPathImpl(char const* bytes);

    /// A copy keeps the text and what is known of it.
    TPathImpl(TPathImpl const& other);

    /// Takes over the text and what is known of it.
    TPathImpl& operator=(TPathImpl const& other) = default;
    ~TPathImpl() override;

    /// The text of the path, as it was given or joined.
    String const& getText() const noexcept { return m_text; }

    /// True when the text is known to be absolute and normalized; toNormalized() relies on it.
    bool isNormalized() const noexcept { return m_normalized; }

    /// This path with \p right behind it; an empty \p right adds nothing, and an absolute one
    /// replaces this path. The result stays normalized when this path is and \p right is one
    /// plain component. Throws CError when the separators could not be made.
    TPathImpl operator<<(TPathImpl const& right) const;

    /// The path without ".", "..", empty components and separators at the end. A path that is
    /// known to be normalized is returned as it is.
    /// \param makeAbsolute  true puts a relative path, unless it is empty, behind \p base, or
    ///                      behind the current folder when \p base is empty
    /// \param base          used only with makeAbsolute
    /// Throws CBadPathError when ".." climbs above the root, and CError when the current folder
    /// is needed and cannot be told.
    TPathImpl toNormalized(bool makeAbsolute, TPathImpl const& base) const;

private:
    TPathImpl(String const& text, bool normalized);

    /// The text that toNormalized() works on.
    String textToNormalize(bool makeAbsolute, TPathImpl const& base) const;

    String m_text;
    bool m_normalized = false;
};

#pragma GCC diagnostic pop

extern template class TPathImpl<CUnixPathTraits>;

/// The paths of this system.
using CPath = TPathImpl<CUnixPathTraits>;

} // namespace zel
