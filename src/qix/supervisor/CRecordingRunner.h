#pragma once

#include "planning/CPlannedRunner.h"
#include "supervisor/IReplayTarget.h"
#include "supervisor/Unit.h"

#include <qix/TestOutcome.h>

#include <exception>
#include <string>

namespace qix
{

/// Runs what is handed out to a process of its own: decides as the runner of a plan does, and tells
/// of everything instead of printing, logging and counting it.
class CRecordingRunner : public CPlannedRunner, public IUnitRunner
{
public:
    using CPlannedRunner::CPlannedRunner;

    /// Decides from now on as the other one does, which outlives this one.
    /// \param isMeasured  each unit tells what its process has used
    void recordFor(CPlannedRunner const& other, bool isMeasured);

    void runUnit(Unit const& unit, IMessageSink& sink) override;

    bool beginSubTest(std::string const& name, ITestItem::Duration duration, bool isInteractive,
                      bool containsAnyInteractive) override;
    void endSubTest_Failed(std::exception const& e) override;
    void endSubTest_Aborted() override;
    void endSubTest_Skipped() override;
    void endSubTest_Success() override;

private:
    void runChild(Child const& child) override;
    void runItem(Child const& child) override;
    bool beginFiltered(std::string const& name, ITestItem::Duration duration, bool isInteractive,
                       bool containsAnyInteractive) override;

    Moment now() const;
    void runOpen(ITestItem& item, bool isMeasured);
    TestOutcome outcomeOf(ITestItem& item);
    void tellEnd(TestOutcome::Kind kind, std::exception const* exception, bool isPrinted);
    void closeInnermost(TestOutcome::Kind kind);
    bool isInnermostTold() const;

    CPlannedRunner const* m_other = nullptr;
    IMessageSink* m_sink = nullptr;
    bool m_isMeasured = false; ///< each unit
};

} // namespace qix
