#include "testing/CTestContext.h"

#include <qix/CTestAbortedException.h>
#include <qix/CTestSkippedException.h>

#include "guards/posix/CForkGuard.h"
#include "guards/posix/CForkLock.h"
#include "text/exceptionText.h"
#include "text/forcedUnwind.h"

#include <mutex>

namespace qix
{

namespace
{

/// Guards the chain of all runs and what they have noted. Both outlive every thread. Nothing of a
/// test's own is called under it: that may wait for a thread that is about to check something.
std::mutex runsMutex;
CForkLock const runsLockedWhileForking(runsMutex);
CTestContext* innermostOfProcess = nullptr;
thread_local CTestContext* innermostOfThread = nullptr;

/// A check in a loop can fail without end.
constexpr std::size_t listedFailures = 100;

/// A row of a short test takes a part of the test's time. What longer ones take nobody has said,
/// and the shortest time of their class would be wrong.
ITestItem::Duration durationOfRows(ITestItem const& item)
{
    return item.getDuration() == ITestItem::Short ? ITestItem::Short : ITestItem::None;
}

} // namespace

/// Keeps the current run from ending while it lives, without a lock.
class CTestContext::CUse
{
public:
    CUse() noexcept
    {
        std::lock_guard<std::mutex> const lock(runsMutex);
        m_run = current();
        if (m_run != nullptr)
        {
            ++m_run->m_useCount;
        }
    }

    ~CUse()
    {
        if (m_run != nullptr)
        {
            std::lock_guard<std::mutex> const lock(runsMutex);
            --m_run->m_useCount;
            // Under the lock, without which the run could end first, and the condition with it.
            m_run->m_useEnded.notify_all();
        }
    }

    CUse(CUse const&) = delete;
    CUse& operator=(CUse const&) = delete;

    CTestContext* getRun() const noexcept { return m_run; }

private:
    CTestContext* m_run;
};

zel::P<zel::CError> CRequirementFailedException::clone() const
{
    return zel::newObj<CRequirementFailedException>(*this);
}

void CRequirementFailedException::throwClone() const
{
    throw CRequirementFailedException(*this);
}

CTestContext::CTestContext(ITestItem& item, ITestRunner* runner) noexcept
    : m_item(item), m_runner(runner), m_outerOfThread(innermostOfThread)
{
    std::lock_guard<std::mutex> const lock(runsMutex);
    m_outerOfProcess = innermostOfProcess;
    innermostOfProcess = this;
    innermostOfThread = this;
}

CTestContext::~CTestContext()
{
    leave();
}

void CTestContext::leave() noexcept
{
    if (!m_isCurrent)
    {
        return;
    }
    std::unique_lock<std::mutex> lock(runsMutex);
    m_isCurrent = false;
    innermostOfThread = m_outerOfThread;
    // Runs of other threads may have come and stayed since.
    CTestContext** link = &innermostOfProcess;
    while (*link != this)
    {
        link = &(*link)->m_outerOfProcess;
    }
    *link = m_outerOfProcess;
    m_useEnded.wait(lock, [this] { return m_useCount == 0; });
}

CTestContext* CTestContext::ofThisThread() noexcept
{
    return innermostOfThread;
}

CTestContext* CTestContext::current() noexcept
{
    return innermostOfThread != nullptr ? innermostOfThread : innermostOfProcess;
}

bool CTestContext::noteInCurrent(std::string const& failure)
{
    std::lock_guard<std::mutex> const lock(runsMutex);
    CTestContext* const run = current();
    if (run == nullptr)
    {
        return false;
    }
    run->noteLocked(failure);
    return true;
}

bool CTestContext::logInCurrent(zel::String const& line)
{
    CUse const use;
    if (use.getRun() == nullptr)
    {
        return false;
    }
    use.getRun()->m_item.log(line);
    return true;
}

void CTestContext::note(std::string const& failure)
{
    std::lock_guard<std::mutex> const lock(runsMutex);
    noteLocked(failure);
}

void CTestContext::noteLocked(std::string const& failure)
{
    if (m_failures.size() < listedFailures)
    {
        m_failures.push_back(failure);
    }
    ++m_failureCount;
}

QIX_CATCHES_FORCED_UNWIND bool CTestContext::tryStep(char const* name, detail::CFunctionRef step)
{
    try
    {
        CForkGuard const guard;
        step();
        return true;
    }
    catch (CRequirementFailedException const&)
    {
        // It has been noted.
    }
    catch (CTestAbortedException const& e)
    {
        m_item.log("Aborted: " + e.getMessage());
        keepOutcome();
    }
    catch (CTestSkippedException const&)
    {
        keepOutcome();
    }
    catch (std::exception const&)
    {
        keepError(name);
    }
    catch (abi::__forced_unwind const&)
    {
        // The thread is being cancelled, which nobody may stop.
        throw;
    }
    catch (...)
    {
        note(std::string(name) + " threw " + currentExceptionText());
    }
    return false;
}

void CTestContext::keepOutcome()
{
    if (m_outcome == nullptr)
    {
        m_outcome = std::current_exception();
    }
}

void CTestContext::keepError(char const* step)
{
    if (m_error == nullptr)
    {
        m_error = std::current_exception();
    }
    note(std::string(step) + " threw " + currentExceptionText());
}

void CTestContext::runSubTest(std::string const& name, detail::CFunctionRef row,
                              std::string const& place)
{
    if (!m_runner->beginSubTest(name, durationOfRows(m_item), m_item.isInteractive(),
                                m_item.containsAnyInteractive()))
    {
        return;
    }
    CTestContext run(m_item, m_runner);
    run.tryStep("it", row);
    if (!endSubTest(run))
    {
        note(place + ": the sub-test \"" + name + "\" failed");
    }
}

/// False when the row has failed.
bool CTestContext::endSubTest(CTestContext& row)
{
    try
    {
        row.finish();
    }
    catch (CTestAbortedException const&)
    {
        m_runner->endSubTest_Aborted();
        return true;
    }
    catch (CTestSkippedException const&)
    {
        m_runner->endSubTest_Skipped();
        return true;
    }
    catch (std::exception const& e)
    {
        m_runner->endSubTest_Failed(e);
        return false;
    }
    m_runner->endSubTest_Success();
    return true;
}

void CTestContext::finish()
{
    leave();
    if (m_failureCount == 1 && m_error != nullptr)
    {
        std::rethrow_exception(m_error);
    }
    if (m_failureCount > 0)
    {
        throw CTestFailedException(listFailures());
    }
    if (m_outcome != nullptr)
    {
        std::rethrow_exception(m_outcome);
    }
}

/// The first failure begins the text. The others stand below it, indented as the first one is in
/// the list of failed tests.
std::string CTestContext::listFailures() const
{
    std::string list = m_failures.front();
    for (std::size_t i = 1; i < m_failures.size(); ++i)
    {
        list += "\n  " + m_failures[i];
    }
    if (m_failureCount > m_failures.size())
    {
        list += "\n  and " + std::to_string(m_failureCount - m_failures.size()) + " more";
    }
    return list;
}

} // namespace qix
