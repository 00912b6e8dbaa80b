#pragma once

namespace test
{

/// Takes the administrator rights from the process for good, if it has them: it goes on as a user
/// who owns nothing. Throws std::system_error when the system refuses.
void becomeOrdinaryUser();

} // namespace test
