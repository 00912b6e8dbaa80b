#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace qix
{

/// What the system tells of the process in the file of that name, as far as it can be read: a
/// process may end between the opening and the reading, which a stream would answer by an
/// exception.
std::string readOfProcess(pid_t process, std::string const& name);

/// All processes that the given one has started, and those that they have, as far as they have not
/// been left to another process.
std::vector<pid_t> listDescendants(pid_t ancestor);

/// The arguments that the process was started with, separated by blanks.
std::string commandOf(pid_t process);

/// Waits for those children of this process that have ended. True when others are left.
bool reapAll() noexcept;

/// Stops all descendants of this process, also those that are forked meanwhile.
/// \return those that were not stopped already
std::vector<pid_t> stopDescendants();

/// Sends SIGKILL to all descendants of this process, which is a subreaper, again until none is
/// left.
void killDescendants();

} // namespace qix
