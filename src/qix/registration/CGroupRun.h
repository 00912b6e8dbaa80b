#pragma once

#include <qix/ITestRunner.h>
#include <qix/detail/subTest.h>

#include "registration/GroupFixture.h"

#include <cstddef>
#include <exception>

namespace qix::detail
{

class CRegisteredGroup;

/// One run of a group with objects that its tests share: they are made for the first test that is
/// run.
class CGroupRun
{
public:
    /// All that is passed outlives this.
    CGroupRun(CRegisteredGroup& group, ITestRunner* runner) noexcept;
    CGroupRun(CGroupRun const&) = delete;
    CGroupRun& operator=(CGroupRun const&) = delete;
    ~CGroupRun();

    /// Releases the objects and throws what went wrong in making or releasing them.
    void end();

    /// Called by each test in front of its body: makes what is not made yet for the groups that are
    /// being run on this thread. Throws when that is not possible: what the constructor threw to
    /// skip or abort, and otherwise CTestAbortedException.
    static void prepareTest();

private:
    void prepare();
    void make();
    void release();
    void keep(GroupFixture const& fixture, char const* name, CFunctionRef step);

    CRegisteredGroup& m_group;
    ITestRunner* m_runner;
    CGroupRun* m_outer;
    std::size_t m_madeCount = 0;
    bool m_isPrepared = false;
    std::exception_ptr m_error; ///< the first one
};

} // namespace qix::detail
