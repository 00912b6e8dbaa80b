#include "registration/CGroupRun.h"

#include <qix/CTestAbortedException.h>
#include <qix/CTestFailedException.h>
#include <qix/CTestSkippedException.h>
#include <qix/detail/groupFixture.h>
#include <zel/CError.h>

#include "model/outcomes.h"
#include "registration/CRegisteredGroup.h"
#include "registration/CRegistry.h"
#include "testing/CTestContext.h"
#include "text/decodedText.h"

#include <string>
#include <utility>

namespace qix::detail
{

namespace
{

thread_local CGroupRun* innermostGroup = nullptr;

} // namespace

CGroupRun::CGroupRun(CRegisteredGroup& group, ITestRunner* runner) noexcept
    : m_group(group), m_runner(runner), m_outer(std::exchange(innermostGroup, this))
{
}

CGroupRun::~CGroupRun()
{
    release();
    innermostGroup = m_outer;
}

void CGroupRun::end()
{
    release();
    if (m_error)
    {
        std::rethrow_exception(m_error);
    }
}

void CGroupRun::prepareTest()
{
    if (innermostGroup != nullptr)
    {
        innermostGroup->prepare();
    }
}

void CGroupRun::prepare()
{
    if (m_outer != nullptr)
    {
        m_outer->prepare();
    }
    if (!m_isPrepared)
    {
        m_isPrepared = true;
        make();
    }
    if (!m_error)
    {
        return;
    }
    try
    {
        std::rethrow_exception(m_error);
    }
    catch (CTestSkippedException const&)
    {
        throw;
    }
    catch (CTestAbortedException const&)
    {
        throw;
    }
    catch (std::exception const&)
    {
        throw CTestAbortedException(
            decodedText("the fixture of the group " + m_group.getPath() + " could not be made"));
    }
}

void CGroupRun::make()
{
    for (GroupFixture const& fixture : m_group.getFixtures())
    {
        bool isMade = false;
        keep(fixture, "constructor",
             [&]
             {
                 fixture.make();
                 isMade = true;
             });
        m_madeCount += isMade ? 1 : 0;
        if (m_error)
        {
            release();
            return;
        }
    }
}

void CGroupRun::release()
{
    while (m_madeCount > 0)
    {
        GroupFixture const& fixture = m_group.getFixtures()[--m_madeCount];
        keep(fixture, "destructor", fixture.release);
    }
}

/// Runs the step as a test of its own is run, so that checks may stand in it.
void CGroupRun::keep(GroupFixture const& fixture, char const* name, CFunctionRef step)
{
    CTestContext run(m_group, m_runner);
    run.locate(fixture.location);
    run.tryStep((std::string("the ") + name + " of " + fixture.type).c_str(), step);
    catchOutcome([&run] { run.finish(); },
                 [this](TestOutcome::Kind /*kind*/, std::exception const& /*exception*/)
                 { m_error = m_error ? m_error : std::current_exception(); });
}

CGroupFixtureRegistration::CGroupFixtureRegistration(char const* file, int line, char const* group,
                                                     char const* type, void (*make)(),
                                                     void (*release)())
{
    CRegistry::get().add(group, GroupFixture{{file, line}, type, make, release});
}

void throwNoGroupFixture()
{
    throw zel::CError("groupFixture() was called for a type that no group of a running test has "
                      "as its fixture");
}

} // namespace qix::detail
