#pragma once

#include <qix/ITestItem.h>
#include <qix/export.h>
#include <zel/IBase.h>
#include <zel/P.h>

namespace qix
{

/// Makes one test item when it is needed, so that a test can be registered without being built.
class QIX_EXPORT ITestItemFactory : public virtual zel::IBase
{
public:
    /// The item that this factory stands for. A group calls it once and drops the factory; after
    /// an exception it keeps the factory and calls it again with the next use of its children.
    /// Null is reported by runners as an item that has failed.
    virtual zel::P<ITestItem> createTestItem() = 0;
};

} // namespace qix
