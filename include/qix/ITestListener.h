#pragma once

#include <qix/RunCounts.h>
#include <qix/RunInfo.h>
#include <qix/TestInfo.h>
#include <qix/TestOutcome.h>
#include <qix/export.h>
#include <zel/IBase.h>
#include <zel/P.h>

namespace qix
{

/// Is told what happens in runs: override what is of interest, the other operations do nothing.
///
/// All is told on the thread that runs the tests, between them, and what is passed is valid during
/// the call. What an operation throws is told on standard error, the first time, and fails the
/// run at its end; nothing else is lost by it: this listener and all others are told the rest.
///
/// Each test that begins also ends, and so does each run, even when an exception ends it early. A
/// test that runs tests itself, by a runner of its own, begins and ends a run inside itself.
class QIX_EXPORT ITestListener : public virtual zel::IBase
{
public:
    /// Why a test is not run.
    enum class Filter
    {
        Duration,      ///< it takes longer than the tests that may run
        Interactive,   ///< it needs a human, and such tests may not run
        NotInteractive ///< it contains nothing that needs a human, and only such tests may run
    };

    /// A run begins: none of its tests has begun.
    virtual void onRunBegin(RunInfo const& /*run*/) {}

    /// A test, a group or a sub-test begins.
    virtual void onTestBegin(TestInfo const& /*test*/) {}

    /// What began last ends. The first argument is what onTestBegin() was told.
    virtual void onTestEnd(TestInfo const& /*test*/, TestOutcome const& /*outcome*/) {}

    /// The test does not begin, nor does anything in it. It counts as skipped.
    virtual void onTestFiltered(TestInfo const& /*test*/, Filter /*filter*/) {}

    /// The counts, which are printed already.
    virtual void onRunEnd(RunCounts const& /*counts*/) {}
};

/// Adds a listener for all runs of the process. One that is added during a run is told of the tests
/// that begin from then on, and of the run's end. One that is there already stays as it is.
///
/// It is held until it is removed, or the process ends. Safe to call from any thread, and from
/// listeners and tests. Throws zel::CInvalidArgError when \p listener is null.
QIX_EXPORT void addTestListener(zel::P<ITestListener> const& listener);

/// Removes a listener, which is told nothing any more once this returns, unless another thread is
/// telling it something just then. Does nothing if it is not there. Safe to call from any thread,
/// and from listeners and tests.
QIX_EXPORT void removeTestListener(ITestListener const* listener);

} // namespace qix
