#pragma once

namespace qix
{

/// If a test forks and the child returns from the test, ends the child, so that it does not report
/// the test and run the remaining tests again.
class CForkGuard
{
public:
    CForkGuard() noexcept;
    ~CForkGuard();
    CForkGuard(CForkGuard const&) = delete;
    CForkGuard& operator=(CForkGuard const&) = delete;

private:
    unsigned m_generation;
};

} // namespace qix
