#pragma once

namespace zel
{

/// True for the components of a path that name a folder relative to another one.
template <typename Text>
bool isDots(Text const& component)
{
    return component == "." || component == "..";
}

} // namespace zel
