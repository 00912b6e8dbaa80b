#pragma once

#include <qix/export.h>
#include <zel/CBase.h>
#include <zel/String.h>
#include <zel/TPathImpl.h>

namespace qix
{

/// A folder for one test: empty when the object is made, and removed with it.
///
/// What exists at that path is removed first, and no name is protected: ".." is the parent of
/// the current folder, and everything in it would be removed. Two objects of one name share the
/// folder; the second empties it, and the first to be destroyed removes it.
class QIX_EXPORT CTestFolder : public zel::CBase
{
public:
    /// Makes the folder \p name, empty, in the current folder unless the name is absolute. Folders
    /// above it that are missing are made too, and stay.
    /// Throws zel::CInvalidArgError when the name is empty, zel::CBadPathError when it climbs above
    /// the root, and zel::CError when the folder cannot be wiped or made.
    explicit CTestFolder(zel::String const& name);
    CTestFolder(CTestFolder const&) = delete;
    CTestFolder& operator=(CTestFolder const&) = delete;

    /// Removes the folder with everything in it. Errors are ignored.
    ~CTestFolder() override;

    /// Where the folder is: absolute and normalized, whatever the current folder is by now.
    zel::TPathImpl<zel::CUnixPathTraits> const& getPath() const noexcept { return m_path; }

private:
    zel::TPathImpl<zel::CUnixPathTraits> m_path;
};

} // namespace qix
