#pragma once

#include <qix/CTestFailedException.h>
#include <qix/ITestItem.h>
#include <qix/ITestRunner.h>
#include <qix/detail/subTest.h>
#include <zel/String.h>

#include <condition_variable>
#include <cstddef>
#include <exception>
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
    static bool noteInCurrent(std::string const& failure);

    /// Records a line in the item of the current run. False when there is none. Safe to call on
    /// any thread.
    static bool logInCurrent(zel::String const& line);

    /// Calls \p step and keeps what it throws. True when it returned.
    /// \param name  what messages call the step
    bool tryStep(char const* name, detail::CFunctionRef step);

    /// Runs a sub-test inside this run and reports it to the runner. When it fails, this run has
    /// failed, too.
    /// \param place  where the sub-test is written
    void runSubTest(std::string const& name, detail::CFunctionRef row, std::string const& place);

    /// Ends the run: nothing is noted any more. Throws unless all went well.
    void finish();

private:
    class CUse;

    static CTestContext* current() noexcept;

    bool endSubTest(CTestContext& row);
    void keepOutcome();
    void keepError(char const* step);
    void note(std::string const& failure);
    void noteLocked(std::string const& failure);
    void leave() noexcept;
    std::string listFailures() const;

    ITestItem& m_item;
    ITestRunner* m_runner;
    CTestContext* m_outerOfThread;
    CTestContext* m_outerOfProcess;
    bool m_isCurrent = true;
    unsigned m_useCount = 0; ///< how many threads are recording a line in the item
    std::condition_variable m_useEnded;
    std::vector<std::string> m_failures; ///< those that are listed, in the order of their coming
    std::size_t m_failureCount = 0;
    std::exception_ptr m_error;   ///< the first failure that is an exception of the test's own
    std::exception_ptr m_outcome; ///< the first exception that tells of a skipped or aborted test
};

} // namespace qix
