#pragma once

#include <string>
#include <vector>

namespace qix::detail
{

class CRegisteredGroup;

/// A message for each invalid name of a group and its children. Of duplicate names, the later one
/// is invalid.
std::vector<std::string> listInvalidNames(CRegisteredGroup const& group);

} // namespace qix::detail
