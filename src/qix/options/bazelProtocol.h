#pragma once

#include "options/RunOptions.h"

namespace qix
{

/// What Bazel asks of a test by variables of the environment, as options; nothing unless BAZEL_TEST
/// is 1. What tells this one run what to do is removed from the environment, so that a suite which
/// a test starts neither takes it for itself nor writes to the same files.
///
/// Touches the file that tells Bazel that the program knows of shards.
/// Throws std::runtime_error for a variable with a wrong value, and for a file that cannot be
/// written.
RunOptions readBazelProtocol();

} // namespace qix
