#include "supervisor/CRecordedUnit.h"

#include "supervisor/CReplay.h"
#include "supervisor/outcomeMessages.h"

#include <algorithm>
#include <utility>

namespace qix
{

namespace
{

bool isLast(MessageKind kind) noexcept
{
    return kind == MessageKind::UnitEnd || kind == MessageKind::Died;
}

bool tellsFailure(CMessageReader message)
{
    switch (message.kind())
    {
    case MessageKind::Died:
        return true;
    case MessageKind::End:
        readMoment(message);
        message.number();
        return readOutcome(message).kind == TestOutcome::Failed;
    case MessageKind::ItemEnd:
        readMoment(message);
        readMoment(message);
        return readOutcome(message).kind == TestOutcome::Failed;
    default:
        return false;
    }
}

} // namespace

CRecordedUnit::CRecordedUnit(IMessageSource& source, PrintedText& printed)
{
    bool isAtEnd = false;
    while (!isAtEnd)
    {
        CMessageReader const message = source.next();
        isAtEnd = isLast(message.kind());
        m_entries.push_back({std::exchange(printed, PrintedText()), std::string(message.bytes())});
    }
}

bool CRecordedUnit::hasFailed() const
{
    return std::any_of(m_entries.begin(), m_entries.end(),
                       [](Entry const& entry)
                       { return tellsFailure(CMessageReader(entry.message)); });
}

CMessageReader CRecordedUnit::next()
{
    Entry& entry = m_entries[m_next];
    m_next += m_next + 1 < m_entries.size() ? 1 : 0;
    std::exchange(entry.printed, PrintedText()).print();
    return CMessageReader(entry.message);
}

} // namespace qix
