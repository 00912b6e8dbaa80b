#pragma once

namespace qix
{

/// What stands for the name of an item that a factory failed to return.
constexpr char const* nullItemName = "(null)";

} // namespace qix
