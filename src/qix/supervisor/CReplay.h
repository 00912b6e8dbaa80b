#pragma once

#include <qix/ITestItem.h>
#include <qix/ITestRunner.h>
#include <zel/P.h>
#include <zel/String.h>

#include "supervisor/IMessageSource.h"
#include "supervisor/IReplayTarget.h"

#include <vector>

namespace qix
{

/// Plays back to a runner what a test has done in another process.
class CReplay
{
public:
    /// Both outlive the replay.
    CReplay(IMessageSource& source, IReplayTarget& target) : m_source(source), m_target(target) {}

    /// An item that tells of itself what the given one does, but whose run is played back.
    /// \param item  outlives the stand-in
    zel::P<ITestItem> standInFor(ITestItem& item);

    /// What ITestItem::run() does: comes back or throws as the item has done there.
    /// \param lines  receives what it has recorded
    void runItem(ITestRunner& runner, std::vector<zel::String>& lines);

private:
    void begin(ITestRunner& runner, CMessageReader message);
    void end(ITestRunner& runner, CMessageReader message);
    void handOver(CMessageReader message);
    void endDied(CMessageReader message);
    void noteUsage(CMessageReader& message);
    void leaveOutHanded();
    void endItem(CMessageReader message, std::size_t depth, std::vector<zel::String>& lines);

    IMessageSource& m_source;
    IReplayTarget& m_target;
};

/// @{
/// What stands in a message.
void addMoment(CMessageWriter& message, Moment const& moment);
Moment readMoment(CMessageReader& message);
/// @}

} // namespace qix
