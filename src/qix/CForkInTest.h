#pragma once

namespace qix
{

/// Ends a process that was forked while this lived, when it comes to the end of this object's life
/// too: it would report the test, and run all that follow, once more. Only the process that made
/// the object gets beyond it.
class CForkInTest
{
public:
    CForkInTest() noexcept;
    ~CForkInTest();
    CForkInTest(CForkInTest const&) = delete;
    CForkInTest& operator=(CForkInTest const&) = delete;

private:
    unsigned m_forks;
};

} // namespace qix
