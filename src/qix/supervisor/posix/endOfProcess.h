#pragma once

#include "supervisor/posix/SharedState.h"

#include <string>

namespace qix
{

/// From now on it is noted how this process, and those that it forks, end: where it was when a
/// signal ended it, and which function has ended it otherwise. Signals for which there is a handler
/// already, that of a sanitizer say, are left to that.
///
/// \param state  outlives the process
void noteEnding(CrashState& state);

/// Forgets how the last one has ended.
void forgetEnding(CrashState& state) noexcept;

/// What becomes of the failure of a test in the middle of which its process ended. Called in a
/// process that is forked from the same one.
/// \param status  as from waitpid()
std::string describeEnding(int status, CrashState const& state);

} // namespace qix
