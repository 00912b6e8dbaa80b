#pragma once

#include <string>
#include <vector>

namespace qix::detail
{

class CRegisteredGroup;

/// What is wrong with the names of a group and of its children: a message for each of them that is
/// refused. Of two children that contradict each other the later one is refused.
std::vector<std::string> listInvalidNames(CRegisteredGroup const& group);

} // namespace qix::detail
