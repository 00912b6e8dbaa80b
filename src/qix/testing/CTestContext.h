#pragma once

#include <qix/CTestFailedException.h>
#include <qix/CTestItem.h>
#include <qix/CheckFailure.h>
#include <qix/ITestItem.h>
#include <qix/ITestRunner.h>
#include <qix/SourceLocation.h>
#include <qix/TestOutcome.h>
#include <qix/detail/subTest.h>
#include <zel/String.h>

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qix
{

class CSections;

/// Thrown by a requirement that does not hold, whose failure its context has recorded already.
class CRequirementFailedException : public CTestFailedException
{
public:
    using CTestFailedException::CTestFailedException;

    zel::P<zel::CError> clone() const override;
    [[noreturn]] void throwClone() const override;
};

/// The context of a running test or sub-test: collects its failures, whichever thread they are on.
///
/// From its construction to finish() it is the current context, which checks report to: of its own
/// thread, and of all threads that have no context themselves.
class CTestContext
{
public:
    /// The context of a test.
    CTestContext(ITestItem& item, ITestRunner* runner) noexcept;

    /// The context of a sub-test, nested in another one.
    /// \param location  where the sub-test is written
    /// \param sections  those that it belongs to if it is a section; null for a row
    CTestContext(CTestContext const& outer, SourceLocation const& location,
                 CSections* sections) noexcept;

    CTestContext(CTestContext const&) = delete;
    CTestContext& operator=(CTestContext const&) = delete;
    ~CTestContext();

    /// The innermost context of the calling thread, or null.
    static CTestContext* ofThisThread() noexcept;

    /// Records a failure in the current context. False when there is none. Safe to call on any
    /// thread.
    static bool noteInCurrent(CheckFailure const& failure);

    /// Records a line in the item of the current context. False when there is none. Safe to call on
    /// any thread.
    static bool logInCurrent(zel::String const& line);

    /// The context that the object was made for, if that is the innermost of the calling thread, or
    /// null.
    static CTestContext* ofObject(CTestItem const& object) noexcept;

    /// Called by each test that is being constructed. True when it is the object that the context
    /// of this thread is making.
    static bool takeAwaited(CTestItem& object) noexcept;

    /// Records a line in the item of the context that the object was made for, unless that has
    /// ended. Safe to call on any thread.
    static void logInRunOf(CTestItem const& object, zel::String const& line);

    /// Makes an object, runs it in this context and releases it.
    /// \param make  sets \p object
    void perform(zel::P<CTestItem>& object, detail::CFunctionRef make);

    /// Calls \p step and records the exception that it throws. True when it returned.
    /// \param name  what messages call the step
    bool tryStep(char const* name, detail::CFunctionRef step);

    /// Adds a text to each failure, unless it is empty.
    /// \param about  outlives the context
    void tellAbout(std::string const& about) noexcept { m_about = &about; }

    /// Reports failing sub-tests to the runner as passed, and sets the flag instead.
    /// \param hasFailed  outlives the context
    void expectFailure(bool& hasFailed) noexcept { m_hasFailedAsExpected = &hasFailed; }

    /// Calls the body of the test, again and again until all sections in it have run.
    void runPasses(detail::CFunctionRef pass);

    /// The sections that this context belongs to, or that are in it.
    CSections& sections();

    /// \param location  where what runs is written, which is not the place of the item
    void locate(SourceLocation const& location) noexcept { m_location = location; }

    /// Becomes the current context again, after leave().
    void enter() noexcept;

    /// Ceases to be the current context. Waits for threads that are recording a line.
    void leave() noexcept;

    /// Asks the runner. False when it does not want the sub-test.
    bool beginSubTest(std::string const& name, SourceLocation const& location);

    /// Tells the runner how the sub-test has ended.
    void endSubTest(CTestContext& subTest);

    void note(CheckFailure const& failure);

    /// Runs a row as a sub-test, which does not fail the test, and reports it to the runner.
    /// \param location  where the sub-test is written
    void runSubTest(std::string const& name, detail::CFunctionRef row,
                    SourceLocation const& location);

    /// Ends the context: no failure is recorded any more. Throws unless all went well, as
    /// ITestItem::run() does.
    void finish();

private:
    class CUse;

    /// An exception that a step threw. It is not copied, so that the caller gets the very object.
    struct Thrown
    {
        TestOutcome::Kind kind;
        std::exception const* exception;
        std::exception_ptr owner;
    };

    static CTestContext* current() noexcept;
    static CTestContext* withObject(CTestItem const* object) noexcept;

    void tidyUpAfterStep(std::size_t outer);
    void endFailedSubTest(CTestContext const& subTest);
    CTestContext& ownerOfException() noexcept;
    char const* nameOfStep(char const* name) const noexcept;
    void keepThrown(char const* step, TestOutcome::Kind kind, std::exception const& exception);
    void keepError(char const* step, Thrown const& thrown);
    void keepOutcome(Thrown const& thrown);
    void noteThrown(char const* step, std::string const& what);
    SourceLocation location() const noexcept;
    [[noreturn]] void throwFailure() const;
    bool isKnownFromEarlierPass(CheckFailure const& failure) const;
    void noteLocked(CheckFailure failure);
    bool hasOnlyAnError() const noexcept;

    void setObject(CTestItem const* object) noexcept;

    ITestItem& m_item;
    ITestRunner* m_runner;
    SourceLocation m_location{nullptr, 0}; ///< where it is written, if the item does not know
    CTestItem const* m_object = nullptr;   ///< what is made for this context
    bool m_awaitsObject = false;
    std::string const* m_about = nullptr;
    bool* m_hasFailedAsExpected = nullptr; ///< null unless failures are expected
    CTestContext* m_outerOfThread = nullptr;
    CTestContext* m_outerOfProcess = nullptr;
    bool m_isCurrent = false;
    unsigned m_useCount = 0; ///< how many threads are recording a line in the item
    std::condition_variable m_useEnded;
    std::vector<CheckFailure> m_failures; ///< those that are listed, in the order they occurred in
    std::size_t m_failureCount = 0;
    std::size_t m_knownFailures = 0; ///< how many of the listed ones are of earlier passes
    bool m_hasInfos = false;         ///< of an exception, which cannot tell them itself
    std::optional<Thrown> m_error;   ///< the first failure that is an exception of the test's own
    std::string m_errorOrigin;       ///< which step threw it, its type and its causes
    std::unique_ptr<CSections> m_ownSections;
    CSections* m_sections = nullptr; ///< null as long as there is none
    std::optional<Thrown> m_outcome; ///< the first exception that tells of a skip or an abort
};

} // namespace qix
