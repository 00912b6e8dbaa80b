#pragma once

#include "RegisteredTest.h"

#include <deque>
#include <string>
#include <vector>

namespace qix::detail
{

/// Tells whether a path has an empty component or a character that no group may have.
bool isGroupNameRefused(std::string const& path);

/// What is wrong with the names of tests and groups: a message for each test that is refused.
std::vector<std::string> listRefusals(std::deque<RegisteredTest> const& tests);

} // namespace qix::detail
