#include "supervisor/CRecordedUnit.h"

#include "supervisor/CReplay.h"
#include "supervisor/outcomeMessages.h"

#include <utility>

namespace qix
{

namespace
{

bool isLast(MessageKind kind) noexcept
{
    return kind == MessageKind::UnitEnd || kind == MessageKind::Died;
}

std::optional<std::string> failureOf(TestOutcome const& outcome)
{
    return outcome.kind == TestOutcome::Failed ? std::optional(outcome.message) : std::nullopt;
}

std::optional<std::string> failureIn(CMessageReader message)
{
    switch (message.kind())
    {
    case MessageKind::Died:
        return std::string(message.text());
    case MessageKind::End:
        readMoment(message);
        message.number();
        return failureOf(readOutcome(message));
    case MessageKind::ItemEnd:
        readMoment(message);
        readMoment(message);
        return failureOf(readOutcome(message));
    default:
        return std::nullopt;
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

std::optional<std::string> CRecordedUnit::firstFailure() const
{
    for (Entry const& entry : m_entries)
    {
        if (auto failure = failureIn(CMessageReader(entry.message)))
        {
            return failure;
        }
    }
    return std::nullopt;
}

CMessageReader CRecordedUnit::next()
{
    Entry& entry = m_entries[m_next];
    m_next += m_next + 1 < m_entries.size() ? 1 : 0;
    PrintedText const printed = std::exchange(entry.printed, PrintedText());
    if (!m_isMuted)
    {
        printed.print();
    }
    return CMessageReader(entry.message);
}

} // namespace qix
