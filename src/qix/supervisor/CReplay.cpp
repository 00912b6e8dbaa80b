#include "supervisor/CReplay.h"

#include <qix/ILocatedItem.h>
#include <zel/CBase.h>
#include <zel/CError.h>

#include "model/outcomes.h"
#include "supervisor/outcomeMessages.h"
#include "text/decodedText.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace qix
{

namespace
{

/// Its run is played back.
class CStandIn : public zel::CBase, public virtual ITestItem, public virtual ILocatedItem
{
public:
    explicit CStandIn(CReplay& replay) : m_replay(replay) {}

    void run(ITestRunner* runner) override { m_replay.runItem(*runner, m_lines); }
    void log(zel::String const& line) override { m_lines.push_back(line); }
    std::vector<zel::String> const& getLog() const override { return m_lines; }

private:
    CReplay& m_replay;
    std::vector<zel::String> m_lines;
};

/// Stands in for an item of this process.
class CStandInForItem : public CStandIn
{
public:
    CStandInForItem(CReplay& replay, ITestItem& item) : CStandIn(replay), m_item(item) {}

    std::string getName() const override { return m_item.getName(); }
    Duration getDuration() const override { return m_item.getDuration(); }
    bool isInteractive() const override { return m_item.isInteractive(); }
    bool containsAnyInteractive() const override { return m_item.containsAnyInteractive(); }
    void getSubItems(std::vector<zel::P<ITestItem>>& out) override { m_item.getSubItems(out); }

    SourceLocation getLocation() const noexcept override
    {
        auto const* const located = dynamic_cast<ILocatedItem const*>(&m_item);
        return located == nullptr ? SourceLocation{nullptr, 0} : located->getLocation();
    }

private:
    ITestItem& m_item;
};

/// Stands in for an item of another process that has told of itself.
class CStandInForTold : public CStandIn
{
public:
    CStandInForTold(CReplay& replay, CMessageReader& message)
        : CStandIn(replay),
          m_name(message.text()),
          m_hasChildren(message.number() != 0),
          m_duration(static_cast<Duration>(message.number())),
          m_isInteractive(message.number() != 0),
          m_containsAnyInteractive(message.number() != 0),
          m_file(message.text()),
          m_line(static_cast<int>(message.number()))
    {
    }

    std::string getName() const override { return m_name; }
    Duration getDuration() const override { return m_duration; }
    bool isInteractive() const override { return m_isInteractive; }
    bool containsAnyInteractive() const override { return m_containsAnyInteractive; }

    /// Whoever asks wants to know whether there are any.
    void getSubItems(std::vector<zel::P<ITestItem>>& out) override
    {
        out.assign(m_hasChildren ? 1 : 0, nullptr);
    }

    SourceLocation getLocation() const noexcept override
    {
        return {m_file.empty() ? nullptr : m_file.c_str(), m_line};
    }

private:
    std::string m_name;
    bool m_hasChildren;
    Duration m_duration;
    bool m_isInteractive;
    bool m_containsAnyInteractive;
    std::string m_file;
    int m_line;
};

/// Stands in for an item that has thrown when it was asked about itself, or was not asked at all.
class CStandInForSilent : public CStandIn
{
public:
    CStandInForSilent(CReplay& replay, std::string name, std::optional<TestOutcome> thrown)
        : CStandIn(replay), m_name(std::move(name)), m_thrown(std::move(thrown))
    {
    }

    std::string getName() const override { return m_name; }
    Duration getDuration() const override { return None; }
    bool isInteractive() const override { return false; }
    bool containsAnyInteractive() const override { return false; }

    void getSubItems(std::vector<zel::P<ITestItem>>& /*out*/) override
    {
        throwOutcome(m_thrown.value_or(TestOutcome()));
    }

    SourceLocation getLocation() const noexcept override { return {nullptr, 0}; }

private:
    std::string m_name;
    std::optional<TestOutcome> m_thrown;
};

TestOutcome failure(std::string_view text)
{
    TestOutcome outcome;
    outcome.kind = TestOutcome::Failed;
    outcome.message = text;
    outcome.failures.push_back({"", 0, "", outcome.message});
    return outcome;
}

[[noreturn]] void throwUnexpected(MessageKind kind)
{
    throw zel::CError(decodedText("the process of a test has sent a message of kind " +
                                  std::to_string(static_cast<int>(kind)) +
                                  " where none is expected"));
}

/// A source location points to a text that lives as long as the program: listeners keep it beyond
/// the message. There are as many as source files.
char const* keepFileName(std::string_view file)
{
    static std::set<std::string, std::less<>> names;
    auto const known = names.find(file);
    return (known != names.end() ? known : names.emplace(file).first)->c_str();
}

} // namespace

void addMoment(CMessageWriter& message, Moment const& moment)
{
    message.add(static_cast<std::uint64_t>(moment.seconds));
    message.add(static_cast<std::uint64_t>(moment.nanoseconds));
}

Moment readMoment(CMessageReader& message)
{
    auto const seconds = static_cast<std::int64_t>(message.number());
    return {seconds, static_cast<std::int64_t>(message.number())};
}

zel::P<ITestItem> CReplay::standInFor(ITestItem& item)
{
    return zel::newObj<CStandInForItem>(*this, item);
}

void CReplay::runItem(ITestRunner& runner, std::vector<zel::String>& lines)
{
    std::size_t const depth = m_target.depth();
    for (;;)
    {
        CMessageReader message = m_source.next();
        switch (message.kind())
        {
        case MessageKind::Begin:
            begin(runner, message);
            break;
        case MessageKind::End:
            end(runner, message);
            break;
        case MessageKind::Handed:
            handOver(message);
            break;
        case MessageKind::ItemEnd:
            return endItem(message, depth, lines);
        case MessageKind::Died:
            return endDied(message);
        default:
            throwUnexpected(message.kind());
        }
    }
}

void CReplay::begin(ITestRunner& runner, CMessageReader message)
{
    std::string const name(message.text());
    auto const duration = static_cast<ITestItem::Duration>(message.number());
    bool const isInteractive = message.number() != 0;
    bool const containsAnyInteractive = message.number() != 0;
    std::string_view const file = message.text();
    SourceLocation const location = {keepFileName(file), static_cast<int>(message.number())};
    Moment const begin = readMoment(message);
    CReportedLocation const reported(file.empty() ? nullptr : &location);
    if (runner.beginSubTest(name, duration, isInteractive, containsAnyInteractive))
    {
        m_target.setBegin(m_target.depth(), begin);
    }
}

void CReplay::end(ITestRunner& runner, CMessageReader message)
{
    m_target.setNow(m_target.depth(), readMoment(message));
    bool const isExplained = message.number() != 0;
    TestOutcome const outcome = readOutcome(message);
    if (outcome.kind == TestOutcome::Ok)
    {
        runner.endSubTest_Success();
        return;
    }
    withException(outcome,
                  [&](std::exception const& e)
                  {
                      CReportedException const reported(isExplained ? &e : nullptr);
                      switch (outcome.kind)
                      {
                      case TestOutcome::Aborted:
                          return runner.endSubTest_Aborted();
                      case TestOutcome::Skipped:
                          return runner.endSubTest_Skipped();
                      default:
                          return runner.endSubTest_Failed(e);
                      }
                  });
}

/// In its process nobody knew that no further test was to begin.
void CReplay::leaveOutHanded()
{
    m_source.mute(true);
    for (std::size_t open = 1; open > 0;)
    {
        switch (m_source.next().kind())
        {
        case MessageKind::Handed:
            ++open;
            break;
        case MessageKind::HandedEnd:
            --open;
            break;
        case MessageKind::Died:
            open = 0;
            break;
        default:
            break;
        }
    }
    m_source.mute(false);
}

/// What leaves the runner has left it there, too: what came of it is told by what comes next.
void CReplay::handOver(CMessageReader message)
{
    if (!m_target.isGoingOn())
    {
        leaveOutHanded();
        return;
    }
    auto const node = static_cast<std::uint32_t>(message.number());
    bool const isNull = message.number() != 0;
    std::string name(message.text());
    zel::P<ITestItem> item;
    CMessageReader next = m_source.next();
    bool const isAtEnd = next.kind() == MessageKind::HandedEnd;
    if (next.kind() == MessageKind::Properties)
    {
        item = zel::newObj<CStandInForTold>(*this, next);
    }
    else if (next.kind() == MessageKind::NoProperties)
    {
        item = zel::newObj<CStandInForSilent>(*this, std::move(name), readOutcome(next));
    }
    else if (!isNull)
    {
        item = zel::newObj<CStandInForSilent>(*this, std::move(name), std::nullopt);
    }
    try
    {
        m_target.runHanded(node, item.get());
    }
    catch (std::exception const&)
    {
    }
    if (!isAtEnd)
    {
        m_source.next();
    }
}

void CReplay::endDied(CMessageReader message)
{
    TestOutcome const outcome = failure(message.text());
    noteUsage(message);
    throwOutcome(outcome);
}

void CReplay::noteUsage(CMessageReader& message)
{
    if (std::optional<ProcessUsage> const usage = readUsage(message))
    {
        m_target.noteUsage(*usage);
    }
}

void CReplay::endItem(CMessageReader message, std::size_t depth, std::vector<zel::String>& lines)
{
    m_target.setBegin(depth, readMoment(message));
    m_target.setNow(depth, readMoment(message));
    TestOutcome const outcome = readOutcome(message);
    for (std::uint64_t left = message.number(); left > 0; --left)
    {
        lines.push_back(message.string());
    }
    noteUsage(message);
    throwOutcome(outcome);
}

} // namespace qix
