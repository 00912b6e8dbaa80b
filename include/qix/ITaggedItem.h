#pragma once

#include <qix/export.h>
#include <zel/IBase.h>

#include <string>
#include <vector>

namespace qix
{

/// Something that has tags, words by which tests are told from others.
///
/// A class that implements ITestItem may implement this as well: whoever has the item finds out by
/// a dynamic_cast. Tests that macros have registered with tags do.
class QIX_EXPORT ITaggedItem : public virtual zel::IBase
{
public:
    /// The tags, in the order in which they are written.
    virtual std::vector<std::string> getTags() const = 0;
};

} // namespace qix
