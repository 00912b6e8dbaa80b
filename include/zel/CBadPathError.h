#pragma once

#include <zel/CError.h>
#include <zel/TPathImpl.h>

namespace zel
{

/// A path cannot exist: it climbs above its root.
class ZEL_EXPORT CBadPathError : public CError
{
public:
    /// \param path  the path as it was given; the message shows it
    explicit CBadPathError(TPathImpl<CUnixPathTraits> const& path);

    P<CError> clone() const override;
    [[noreturn]] void throwClone() const override;
};

} // namespace zel
