#pragma once

#include "CChildProcess.h"
#include "becomeOrdinaryUser.h"

#include <gtest/gtest.h>

namespace test
{

/// Runs the work in a child process without administrator rights.
/// \return true when all expectations of the work were met
template <typename Work>
bool passesAsOrdinaryUser(Work const& work)
{
    CChildProcess child(
        [&work]
        {
            becomeOrdinaryUser();
            work();
            return testing::Test::HasFailure() ? 1 : 0;
        });
    return child.waitForExit() == 0;
}

} // namespace test
