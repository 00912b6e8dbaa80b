#pragma once

namespace qix
{

/// Makes the working directory of the tests, if it is missing, and enters it: the folder that
/// QIX_TESTWORKDIR names ("testWork" when it is not set), and in it the folder named after the
/// user. False when it cannot be entered, which has been printed then.
bool enterWorkDirectory();

} // namespace qix
