#include <qix/CTestItem.h>
#include <zel/String.h>

#include "guards/posix/CForkLock.h"
#include "testing/CTestContext.h"
#include "testing/infos.h"
#include "text/decodedText.h"

#include <mutex>

namespace qix
{

namespace
{

/// Guards the output of tests, which may log on several threads.
std::mutex logMutex;
CForkLock const logLockedWhileForking(logMutex);

} // namespace

CTestItem::CTestItem() : m_isMadeForRun(CTestContext::takeAwaited(*this))
{
}

CTestItem::CTestItem(std::string const& name, Duration duration, bool interactive)
    : m_name(name),
      m_duration(duration),
      m_interactive(interactive),
      m_isMadeForRun(CTestContext::takeAwaited(*this))
{
}

CTestItem::~CTestItem() = default;

void CTestItem::run(ITestRunner* runner)
{
    auto const callHooks = [this](CTestContext& run)
    {
        if (run.tryStep("clean", [this] { clean(); }))
        {
            if (run.tryStep("setUp", [this] { setUp(); }))
            {
                run.tryStep("the body", [this] { body(); });
            }
            run.tryStep("tearDown", [this] { tearDown(); });
            run.tryStep("clean", [this] { clean(); });
        }
    };
    if (CTestContext* const run = CTestContext::ofObject(*this))
    {
        callHooks(*run);
        return;
    }
    m_logLines.clear();
    CHiddenInfos const hidden;
    CTestContext run(*this, runner);
    run.runPasses([&] { callHooks(run); });
    run.finish();
}

void CTestItem::getSubItems(std::vector<zel::P<ITestItem>>& out)
{
    out.clear();
}

void CTestItem::log(zel::String const& line)
{
    {
        std::lock_guard<std::mutex> const lock(logMutex);
        m_logLines.push_back(line);
    }
    if (m_isMadeForRun)
    {
        CTestContext::logInRunOf(*this, line);
    }
}

void CTestItem::logBytes(std::string_view line)
{
    log(decodedText(line));
}

void CTestItem::clean()
{
}

void CTestItem::setUp()
{
}

void CTestItem::tearDown()
{
}

} // namespace qix
