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
#include <optional>
#include <string>
#include <vector>

namespace qix
{

/// Thrown by a requirement that does not hold, whose failure has been noted in its run already.
class CRequirementFailedException : public CTestFailedException
{
public:
    using CTestFailedException::CTestFailedException;

    zel::P<zel::CError> clone() const override;
    [[noreturn]] void throwClone() const override;
};

/// One run of a test, or of a sub-test inside it: gathers what goes wrong, wherever it happens.
///
/// From its construction to finish() it is the current run, to which checks belong: of its own
/// thread, and of all threads that have no run themselves.
class CTestContext
{
public:
    /// The run of a test.
    CTestContext(ITestItem& item, ITestRunner* runner) noexcept;

    CTestContext(CTestContext const&) = delete;
    CTestContext& operator=(CTestContext const&) = delete;
    ~CTestContext();

    /// The innermost run of the calling thread, or null.
    static CTestContext* ofThisThread() noexcept;

    /// Notes a failure in the current run. False when there is none. Safe to call on any thread.
    static bool noteInCurrent(CheckFailure const& failure);

    /// Records a line in the item of the current run. False when there is none. Safe to call on
    /// any thread.
    static bool logInCurrent(zel::String const& line);

    /// The run that the object was made for, if that is the innermost of the calling thread, or
    /// null.
    static CTestContext* ofObject(CTestItem const& object) noexcept;

    /// Called by each test that is being constructed. True when it is the object that this thread's
    /// run is making.
    static bool takeAwaited(CTestItem& object) noexcept;

    /// Records a line in the item of the run that the object was made for, if that has not ended.
    /// Safe to call on any thread.
    static void logInRunOf(CTestItem const& object, zel::String const& line);

    /// Makes an object, runs it as a part of this run and releases it.
    /// \param make  sets \p object
    void perform(zel::P<CTestItem>& object, detail::CFunctionRef make);

    /// Calls \p step and keeps what it throws. True when it returned.
    /// \param name  what messages call the step
    bool tryStep(char const* name, detail::CFunctionRef step);

    /// Runs a sub-test inside this run and reports it to the runner. When it fails, this run has
    /// failed, too.
    /// \param location  where the sub-test is written
    void runSubTest(std::string const& name, detail::CFunctionRef row,
                    SourceLocation const& location);

    /// Ends the run: nothing is noted any more. Throws unless all went well, as ITestItem::run()
    /// does.
    void finish();

private:
    class CUse;

    /// What a step threw. No copy is made of an exception that is kept, so that both are the same.
    struct Thrown
    {
        TestOutcome::Kind kind;
        std::exception const* exception;
        std::exception_ptr owner;
    };

    static CTestContext* current() noexcept;
    static CTestContext* withObject(CTestItem const* object) noexcept;

    bool catchAll(char const* name, detail::CFunctionRef step);
    bool beginSubTest(std::string const& name, SourceLocation const& location);
    bool endSubTest(CTestContext& row);
    void endFailedSubTest(CTestContext const& row);
    void keepThrown(char const* step, TestOutcome::Kind kind, std::exception const& exception);
    void keepError(char const* step, Thrown const& thrown);
    void keepOutcome(Thrown const& thrown);
    void note(CheckFailure const& failure);
    void noteThrown(char const* step, std::string const& what);
    void noteLocked(CheckFailure const& failure);
    bool hasOnlyAnError() const noexcept;
    void leave() noexcept;

    void setObject(CTestItem const* object) noexcept;

    ITestItem& m_item;
    ITestRunner* m_runner;
    CTestItem const* m_object = nullptr; ///< what is made for this run
    bool m_awaitsObject = false;
    CTestContext* m_outerOfThread;
    CTestContext* m_outerOfProcess;
    bool m_isCurrent = true;
    unsigned m_useCount = 0; ///< how many threads are recording a line in the item
    std::condition_variable m_useEnded;
    std::vector<CheckFailure> m_failures; ///< those that are listed, in the order of their coming
    std::size_t m_failureCount = 0;
    bool m_hasInfos = false;         ///< of an exception, which cannot tell them itself
    std::optional<Thrown> m_error;   ///< the first failure that is an exception of the test's own
    std::optional<Thrown> m_outcome; ///< the first exception that tells of a skip or an abort
};

} // namespace qix
