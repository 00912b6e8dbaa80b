#pragma once

#include <qix/SourceLocation.h>
#include <qix/export.h>
#include <zel/IBase.h>

namespace qix
{

/// Something that knows where it is written in the source.
///
/// A class that implements ITestItem may implement this as well: whoever has the item finds out by
/// a dynamic_cast. Tests and groups that macros have registered do.
class QIX_EXPORT ILocatedItem : public virtual zel::IBase
{
public:
    /// Where the item is written; a null file when it is not known.
    virtual SourceLocation getLocation() const noexcept = 0;
};

} // namespace qix
