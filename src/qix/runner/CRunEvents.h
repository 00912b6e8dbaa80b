#pragma once

#include <qix/ILocatedItem.h>
#include <qix/ITestListener.h>
#include <qix/ITestRunner.h>

#include "model/TFacetFinder.h"
#include "model/outcomes.h"
#include "runner/CListeners.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace qix
{

class CRunScope;

/// What listeners are told of the runs of one thread, and what has to be kept for it: the layout of
/// runners is fixed. Not used while there are no listeners.
class CRunEvents
{
public:
    static CRunEvents& ofThisThread();

    /// What begins next is an item, unless it begins something else first.
    void announce(ITestItem* item, TestInfo::Kind kind);
    void forgetAnnounced() noexcept;

    void beginRun(RunInfo const& run);
    void endRun(RunCounts const& counts);

    /// \param names  the path of what is filtered out
    void filter(std::vector<std::string> names, ITestItem::Duration duration, bool isInteractive,
                ITestListener::Filter filter);

    /// \param names  the path of what begins: as many as are running then
    void begin(ITestRunner const* runner, std::vector<std::string> names,
               ITestItem::Duration duration, bool isInteractive);

    /// Keeps how a test is going to end.
    /// \param depth      the number of tests that are running, those around it and itself
    /// \param exception  what it threw; null when that is the exception being reported, or nothing
    void noteEnding(ITestRunner const* runner, std::size_t depth, TestOutcome::Kind kind,
                    std::exception const* exception);

    /// For what has run elsewhere: when it began there.
    void setBegin(ITestRunner const* runner, std::size_t depth,
                  std::chrono::steady_clock::time_point begin) noexcept;

    /// \param success  how it ended, unless that was noted
    void end(ITestRunner const* runner, std::size_t depth, bool success);

    /// Ends what the runner has left open.
    void endAll(ITestRunner const* runner);

    /// Ends what was begun in the run and left open by an exception.
    void endAll(CRunScope const* run);

private:
    struct Announced
    {
        ITestItem* item;
        TestInfo::Kind kind;
    };

    /// A test that has begun and not ended, and of which listeners were told.
    struct Running
    {
        ITestRunner const* runner;
        CRunScope const* run;
        TestInfo info;
        std::uint64_t lastListener; ///< the last of all listeners that were told
        std::optional<TestOutcome> outcome;
        std::chrono::steady_clock::time_point start;
    };

    TestInfo makeInfo(std::vector<std::string> names, ITestItem::Duration duration,
                      bool isInteractive);
    std::optional<SourceLocation> locationOf(ITestItem const* item);
    Running* find(ITestRunner const* runner, std::size_t depth) noexcept;
    void endInnermost();

    std::optional<Announced> m_announced;
    TFacetFinder<ILocatedItem> m_located; ///< begins anew with each run
    std::deque<Running> m_running;        ///< a deque, since listeners may run tests themselves
};

/// Announces an item while its beginning is called.
class CAnnouncedItem
{
public:
    CAnnouncedItem(ITestItem* item, TestInfo::Kind kind) : m_isAnnounced(CListeners::areThere())
    {
        if (m_isAnnounced)
        {
            CRunEvents::ofThisThread().announce(item, kind);
        }
    }

    ~CAnnouncedItem()
    {
        if (m_isAnnounced)
        {
            CRunEvents::ofThisThread().forgetAnnounced();
        }
    }

    CAnnouncedItem(CAnnouncedItem const&) = delete;
    CAnnouncedItem& operator=(CAnnouncedItem const&) = delete;

private:
    bool m_isAnnounced;
};

/// One run, which ends for its listeners, too, when an exception leaves it.
class CRunScope
{
public:
    explicit CRunScope(std::function<RunCounts()> counts);
    CRunScope(CRunScope const&) = delete;
    CRunScope& operator=(CRunScope const&) = delete;
    ~CRunScope();

    void begin(RunInfo const& run);

    /// False when a listener has thrown in the course of the run.
    bool end();

    void noteThrownByListener() noexcept { m_hasListenerThrown = true; }

private:
    void endUnwound() noexcept;

    // What a test around this run is just reporting says nothing about the tests of this run.
    CReportedException const m_noException{nullptr};
    CReportedLocation const m_noLocation{nullptr};
    CRunScope* m_outer;
    std::function<RunCounts()> m_counts;
    bool m_isOpen = true;
    bool m_hasListenerThrown = false;
};

} // namespace qix
