#pragma once

#include <qix/ITestItem.h>
#include <qix/SourceLocation.h>

#include <optional>
#include <string>
#include <vector>

namespace qix
{

/// What is known of a test, a group or a sub-test before it is run.
struct TestInfo
{
    /// What it is.
    enum Kind
    {
        Group,  ///< an item with children
        Test,   ///< an item without
        SubTest ///< something that a test reports beside itself, such as a row of a table
    };

    Kind kind = Test;               ///< what it is
    std::vector<std::string> names; ///< its path: those around it, the outermost first, and its own
    ITestItem::Duration duration = ITestItem::None; ///< how long it is expected to take
    bool interactive = false;                       ///< it needs a human
    ITestItem* item = nullptr; ///< not owned; null for a sub-test, and for an item that is missing
    std::optional<SourceLocation> location; ///< where it is written, when that is known
};

} // namespace qix
