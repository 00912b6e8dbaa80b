#pragma once

namespace qix
{

/// Shown instead of a name when a factory has returned no item.
constexpr char const* nullItemName = "(null)";

} // namespace qix
