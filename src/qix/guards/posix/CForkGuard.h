#pragma once

namespace qix
{

/// Ends a process that was forked while this lived, when it comes to the end of this object's life
/// too: it would report the test, and run all that follow, once more. Only the process that made
/// the object gets beyond it.
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
