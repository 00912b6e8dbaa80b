#pragma once

#include "guards/posix/processGeneration.h"

namespace qix
{

/// If a test forks and the child returns from the test, ends the child, so that it does not report
/// the test and run the remaining tests again.
class CForkGuard
{
public:
    CForkGuard() noexcept : m_generation(processGeneration()) {}

    ~CForkGuard()
    {
        if (processGeneration() != m_generation)
        {
            endProcess();
        }
    }

    CForkGuard(CForkGuard const&) = delete;
    CForkGuard& operator=(CForkGuard const&) = delete;

private:
    [[noreturn]] static void endProcess() noexcept;

    unsigned m_generation;
};

} // namespace qix
