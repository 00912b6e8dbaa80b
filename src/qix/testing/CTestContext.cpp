#include "testing/CTestContext.h"

#include <qix/ILocatedItem.h>
#include <qix/detail/passedCheck.h>

#include "guards/posix/CForkGuard.h"
#include "guards/posix/CForkLock.h"
#include "model/outcomes.h"
#include "testing/CSections.h"
#include "testing/CThrownFailure.h"
#include "testing/infos.h"
#include "testing/leftByStep.h"
#include "testing/pendingFailures.h"
#include "text/exceptionText.h"
#include "text/forcedUnwind.h"
#include "text/formatLocation.h"
#include "text/messageOf.h"
#include "text/shownName.h"
#include "text/withIndentedLines.h"

#include <algorithm>
#include <mutex>
#include <tuple>
#include <utility>

namespace qix
{

__thread LeftByStep leftByStep = {};

namespace
{

/// Guards the list of all contexts and their failures. Both outlive every thread. No user code is
/// called while it is locked: that may wait for a thread that is about to check something.
std::mutex runsMutex;
CForkLock const runsLockedWhileForking(runsMutex);
CTestContext* innermostOfProcess = nullptr;
__thread CTestContext* innermostOfThread __attribute__((tls_model("initial-exec"))) = nullptr;

/// A check in a loop can fail any number of times.
constexpr std::size_t listedFailures = 100;

/// A row of a short test is short, too. Rows of longer tests have no known duration, and would be
/// reported as faster than the shortest time of the duration of their test.
ITestItem::Duration durationOfRows(ITestItem const& item)
{
    return item.getDuration() == ITestItem::Short ? ITestItem::Short : ITestItem::None;
}

/// A line that tells the last check that this thread has passed.
std::string lastCheckText()
{
    char const* const file = detail::lastPassedCheck.file;
    int const line = detail::lastPassedCheck.line;
    return file == nullptr ? ""
                           : "\nthe last check that passed is at " + formatLocation({file, line});
}

} // namespace

/// A guard that keeps a context from ending, without a lock.
class CTestContext::CUse
{
public:
    /// \param object  what the context has made; null for the current context
    explicit CUse(CTestItem const* object = nullptr) noexcept
    {
        std::lock_guard<std::mutex> const lock(runsMutex);
        m_run = object == nullptr ? current() : withObject(object);
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
            // Under the lock, since otherwise the context could be destroyed before this call.
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
    : m_item(item), m_runner(runner)
{
    enter();
}

CTestContext::CTestContext(CTestContext const& outer, SourceLocation const& location,
                           CSections* sections) noexcept
    : CTestContext(outer.m_item, outer.m_runner)
{
    m_location = location;
    m_about = outer.m_about;
    m_hasFailedAsExpected = outer.m_hasFailedAsExpected;
    m_sections = sections;
}

CTestContext::~CTestContext()
{
    leave();
}

void CTestContext::enter() noexcept
{
    std::lock_guard<std::mutex> const lock(runsMutex);
    m_isCurrent = true;
    m_knownFailures = m_failures.size();
    m_outerOfThread = std::exchange(innermostOfThread, this);
    m_outerOfProcess = std::exchange(innermostOfProcess, this);
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
    // Contexts of other threads may have been pushed in the meantime.
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

CTestContext* CTestContext::withObject(CTestItem const* object) noexcept
{
    CTestContext* run = innermostOfProcess;
    while (run != nullptr && run->m_object != object)
    {
        run = run->m_outerOfProcess;
    }
    return run;
}

CTestContext* CTestContext::ofObject(CTestItem const& object) noexcept
{
    CTestContext* const run = innermostOfThread;
    return run != nullptr && run->m_object == &object ? run : nullptr;
}

bool CTestContext::takeAwaited(CTestItem& object) noexcept
{
    CTestContext* const run = innermostOfThread;
    if (run == nullptr || !run->m_awaitsObject)
    {
        return false;
    }
    run->setObject(&object);
    return true;
}

void CTestContext::logInRunOf(CTestItem const& object, zel::String const& line)
{
    CUse const use(&object);
    if (use.getRun() != nullptr)
    {
        use.getRun()->m_item.log(line);
    }
}

void CTestContext::setObject(CTestItem const* object) noexcept
{
    std::lock_guard<std::mutex> const lock(runsMutex);
    m_awaitsObject = false;
    m_object = object;
}

void CTestContext::perform(zel::P<CTestItem>& object, detail::CFunctionRef make)
{
    m_awaitsObject = true;
    if (tryStep("the constructor", make))
    {
        tryStep("the body", [&] { object->run(m_runner); });
        tryStep("the destructor", [&] { object = nullptr; });
    }
    setObject(nullptr);
}

bool CTestContext::noteInCurrent(CheckFailure const& failure)
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

void CTestContext::note(CheckFailure const& failure)
{
    std::lock_guard<std::mutex> const lock(runsMutex);
    noteLocked(failure);
}

/// Where what runs is written; a null file when it is not known.
SourceLocation CTestContext::location() const noexcept
{
    auto const* const located = dynamic_cast<ILocatedItem const*>(&m_item);
    bool const isOfItem = m_location.file == nullptr && located != nullptr;
    return isOfItem ? located->getLocation() : m_location;
}

void CTestContext::noteThrown(char const* step, std::string const& what)
{
    SourceLocation const at = location();
    std::string text = std::string(step) + " threw " + what;
    text += at.file == nullptr ? "" : lastCheckText();
    std::string const infos = infosOfThisThread();
    m_hasInfos = m_hasInfos || !infos.empty();
    text += infos.empty() ? "" : "\n" + infos;
    note({at.file == nullptr ? "" : at.file, at.line, "", text});
}

/// Code in front of the sections fails again in each pass; its failure is reported once.
bool CTestContext::isKnownFromEarlierPass(CheckFailure const& failure) const
{
    auto const end = m_failures.begin() + static_cast<std::ptrdiff_t>(m_knownFailures);
    return std::any_of(m_failures.begin(), end,
                       [&failure](CheckFailure const& known)
                       {
                           return std::tie(known.line, known.file, known.check, known.values) ==
                                  std::tie(failure.line, failure.file, failure.check,
                                           failure.values);
                       });
}

void CTestContext::noteLocked(CheckFailure failure)
{
    if (m_about != nullptr && !m_about->empty())
    {
        failure.values += (failure.values.empty() ? "" : "\n") + *m_about;
    }
    if (isKnownFromEarlierPass(failure))
    {
        return;
    }
    if (m_failures.size() < listedFailures)
    {
        m_failures.push_back(std::move(failure));
    }
    ++m_failureCount;
}

QIX_CATCHES_FORCED_UNWIND bool CTestContext::tryStep(char const* name, detail::CFunctionRef step)
{
    std::size_t const outer = leftByStep.pendingFailures;
    bool hasReturned = false;
    try
    {
        hasReturned = catchOutcome(
            [step]
            {
                CForkGuard const guard;
                step();
            },
            [this, name](TestOutcome::Kind kind, std::exception const& exception)
            {
                CTestContext& owner = ownerOfException();
                owner.keepThrown(owner.nameOfStep(name), kind, exception);
            });
    }
    catch (abi::__forced_unwind const&)
    {
        // The thread is being cancelled: the forced unwind must go on.
        throw;
    }
    catch (...)
    {
        CTestContext& owner = ownerOfException();
        owner.noteThrown(owner.nameOfStep(name), currentExceptionText());
    }
    tidyUpAfterStep(outer);
    return hasReturned;
}

/// \param outer  how many failures had no end of their message in front of the step
void CTestContext::tidyUpAfterStep(std::size_t outer)
{
    if (leftByStep.pendingFailures > outer)
    {
        notePendingFailures(outer);
    }
    if (leftByStep.infos > 0)
    {
        forgetLeftInfos();
    }
    if (m_ownSections != nullptr)
    {
        m_ownSections->endCut();
    }
}

/// An exception that has left a section belongs to the section.
CTestContext& CTestContext::ownerOfException() noexcept
{
    return m_ownSections == nullptr ? *this : m_ownSections->ownerOfException();
}

char const* CTestContext::nameOfStep(char const* name) const noexcept
{
    bool const isSection = m_sections != nullptr && m_ownSections == nullptr;
    return isSection ? "it" : name;
}

void CTestContext::runPasses(detail::CFunctionRef pass)
{
    bool goesOn = true;
    while (goesOn)
    {
        pass();
        goesOn = m_ownSections != nullptr && m_ownSections->endPass();
        if (goesOn)
        {
            m_ownSections->beginPass();
            // What the other sections have passed is not on the way of this one.
            detail::notePassedCheck(nullptr, 0);
            leave();
            enter();
        }
    }
    if (m_ownSections != nullptr)
    {
        m_ownSections->endAll();
    }
}

CSections& CTestContext::sections()
{
    if (m_sections == nullptr)
    {
        m_ownSections = std::make_unique<CSections>(*this);
        m_sections = m_ownSections.get();
    }
    return *m_sections;
}

void CTestContext::keepThrown(char const* step, TestOutcome::Kind kind,
                              std::exception const& exception)
{
    Thrown const thrown = {kind, &exception, std::current_exception()};
    if (kind != TestOutcome::Failed)
    {
        keepOutcome(thrown);
        return;
    }
    bool const isNoted = dynamic_cast<CRequirementFailedException const*>(&exception) != nullptr;
    if (!isNoted)
    {
        keepError(step, thrown);
    }
}

void CTestContext::keepError(char const* step, Thrown const& thrown)
{
    if (!m_error)
    {
        m_error = thrown;
        m_errorOrigin =
            std::string(step) + " threw " + exceptionOrigin(*thrown.exception) + lastCheckText();
    }
    noteThrown(step, exceptionText(*thrown.exception));
}

void CTestContext::keepOutcome(Thrown const& thrown)
{
    TestOutcome const outcome = makeOutcome(thrown.kind, thrown.exception);
    if (thrown.kind == TestOutcome::Aborted)
    {
        m_item.log("Aborted: " + outcome.reason);
    }
    else if (!outcome.reason.empty())
    {
        m_item.log("Skipped: " + outcome.reason);
    }
    if (!m_outcome)
    {
        m_outcome = thrown;
    }
}

void CTestContext::runSubTest(std::string const& name, detail::CFunctionRef row,
                              SourceLocation const& location)
{
    if (!beginSubTest(shownName(name), location))
    {
        return;
    }
    CTestContext run(*this, location, nullptr);
    run.runPasses([&] { run.tryStep("it", row); });
    endSubTest(run);
}

bool CTestContext::beginSubTest(std::string const& name, SourceLocation const& location)
{
    CReportedLocation const reported(&location);
    return m_runner->beginSubTest(name, durationOfRows(m_item), m_item.isInteractive(),
                                  m_item.containsAnyInteractive());
}

void CTestContext::endSubTest(CTestContext& subTest)
{
    subTest.leave();
    if (subTest.m_failureCount > 0)
    {
        endFailedSubTest(subTest);
        return;
    }
    if (!subTest.m_outcome)
    {
        m_runner->endSubTest_Success();
        return;
    }
    CReportedException const reported(subTest.m_outcome->exception);
    if (subTest.m_outcome->kind == TestOutcome::Aborted)
    {
        m_runner->endSubTest_Aborted();
    }
    else
    {
        m_runner->endSubTest_Skipped();
    }
}

void CTestContext::endFailedSubTest(CTestContext const& subTest)
{
    if (m_hasFailedAsExpected != nullptr)
    {
        *m_hasFailedAsExpected = true;
        m_runner->endSubTest_Success();
        return;
    }
    catchOutcome([&subTest] { subTest.throwFailure(); },
                 [this](TestOutcome::Kind /*kind*/, std::exception const& exception)
                 { m_runner->endSubTest_Failed(exception); });
}

/// An exception of the test's own keeps its message, below which stands what is known of it; where
/// it is not known where the test is written, that is nothing, and it is thrown as it is.
void CTestContext::throwFailure() const
{
    if (!hasOnlyAnError())
    {
        throw CTestFailedException(m_failures, m_failureCount);
    }
    SourceLocation const at = location();
    try
    {
        std::rethrow_exception(m_error->owner);
    }
    catch (std::exception const& e)
    {
        if (at.file == nullptr)
        {
            throw;
        }
        std::string const origin = formatLocation(at) + ": " + m_errorOrigin;
        throw CThrownFailure(messageOf(e) + ("\n    " + withIndentedLines(origin)), m_failures);
    }
}

bool CTestContext::hasOnlyAnError() const noexcept
{
    return m_failureCount == 1 && m_error && !m_hasInfos;
}

void CTestContext::finish()
{
    leave();
    if (m_failureCount > 0)
    {
        throwFailure();
    }
    if (m_outcome)
    {
        std::rethrow_exception(m_outcome->owner);
    }
}

} // namespace qix
