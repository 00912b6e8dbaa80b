#include "reporters/CJsonEvents.h"

#include "model/formatFailure.h"
#include "reporters/posix/hostName.h"
#include "reporters/reportText.h"

#include <utility>

namespace qix
{

namespace
{

char const* nameOf(TestInfo::Kind kind) noexcept
{
    switch (kind)
    {
    case TestInfo::Group:
        return "group";
    case TestInfo::Test:
        return "test";
    case TestInfo::SubTest:
        break;
    }
    return "subTest";
}

char const* nameOf(TestOutcome::Kind kind) noexcept
{
    switch (kind)
    {
    case TestOutcome::Ok:
        return "ok";
    case TestOutcome::Failed:
        return "failed";
    case TestOutcome::Aborted:
        return "aborted";
    case TestOutcome::Skipped:
        break;
    }
    return "skipped";
}

char const* nameOf(ITestListener::Filter filter) noexcept
{
    switch (filter)
    {
    case ITestListener::Filter::Duration:
        return "duration";
    case ITestListener::Filter::Interactive:
        return "interactive";
    case ITestListener::Filter::NotInteractive:
        break;
    }
    return "notInteractive";
}

/// The failure without its place, which has fields of its own.
std::string textOf(CheckFailure failure)
{
    failure.file.clear();
    return formatFailure(failure);
}

} // namespace

CJsonEvents::CJsonEvents(std::string const& file, ReportContext context)
    : CReport(std::move(context)), m_file(file)
{
}

void CJsonEvents::beginRun()
{
    m_begin = std::chrono::steady_clock::now();
    beginEvent("runBegin");
    writeText("program", context().program);
    writeText("version", context().version);
    writeText("host", hostName());
    writeText("start", formatUtcNow());
    m_writer.key("options");
    m_writer.beginArray();
    for (std::string const& option : context().options)
    {
        m_writer.value(option);
    }
    m_writer.endArray();
    writeText("digest", context().digest);
    if (!context().shard.empty())
    {
        writeText("shard", context().shard);
    }
    endEvent();
}

void CJsonEvents::beginTest(Test const& test)
{
    m_running.push_back(describe(test));
    beginEvent("testBegin");
    m_writer.written(m_running.back());
    if (test.info->location)
    {
        writeText("file", test.info->location->file);
        m_writer.key("line");
        m_writer.value(static_cast<std::uint64_t>(test.info->location->line));
    }
    endEvent();
}

void CJsonEvents::endTest(Test const& test, TestOutcome const& outcome)
{
    beginEvent("testEnd");
    m_writer.written(m_running.back());
    m_running.pop_back();
    writeText("outcome", nameOf(outcome.kind));
    m_writer.key("seconds");
    m_writer.seconds(inMicroseconds(outcome.elapsed));
    writeVerdict(test, outcome);
    writeProcess(context().process());
    endEvent();
}

/// Most tests pass and tell nothing.
void CJsonEvents::writeVerdict(Test const& test, TestOutcome const& outcome)
{
    bool const isSilent = test.info->item == nullptr || test.info->item->getLog().empty();
    if (outcome.kind == TestOutcome::Ok && isSilent)
    {
        m_writer.written(R"("message":"","failures":[],"reason":"","output":[])");
        return;
    }
    writeText("message", outcome.message);
    writeFailures(outcome);
    writeText("reason", toUtf8(outcome.reason));
    writeOutput(*test.info);
}

void CJsonEvents::filterTest(Test const& test, Filter filter)
{
    std::string const described = describe(test);
    beginEvent("testFiltered");
    m_writer.written(described);
    writeText("filter", nameOf(filter));
    endEvent();
}

void CJsonEvents::endRun(RunCounts const& counts)
{
    beginEvent("runEnd");
    for (auto const& [key, count] : {std::pair<char const*, int>{"ok", counts.ok},
                                     {"failed", counts.failed},
                                     {"aborted", counts.aborted},
                                     {"skipped", counts.skipped}})
    {
        m_writer.key(key);
        m_writer.value(static_cast<std::uint64_t>(count));
    }
    m_writer.key("seconds");
    m_writer.seconds(inMicroseconds(std::chrono::steady_clock::now() - m_begin));
    endEvent();
}

void CJsonEvents::beginEvent(char const* event)
{
    m_writer.beginObject();
    writeText("event", event);
}

void CJsonEvents::endEvent()
{
    m_writer.endObject();
    m_writer.moveTo(m_line);
    m_line += '\n';
    m_file.append(m_line);
}

void CJsonEvents::writeText(char const* key, std::string_view text)
{
    m_writer.key(key);
    m_writer.value(text);
}

std::string CJsonEvents::describe(Test const& test)
{
    writeText("id", test.id);
    m_writer.key("names");
    m_writer.beginArray();
    for (std::string const& name : test.info->names)
    {
        m_writer.value(name);
    }
    m_writer.endArray();
    writeText("kind", nameOf(test.info->kind));
    std::string described = m_writer.text();
    m_writer.clear();
    return described;
}

void CJsonEvents::writeFailures(TestOutcome const& outcome)
{
    m_writer.key("failures");
    m_writer.beginArray();
    for (CheckFailure const& failure : outcome.failures)
    {
        m_writer.beginObject();
        writeText("file", failure.file);
        m_writer.key("line");
        m_writer.value(static_cast<std::uint64_t>(failure.line));
        writeText("text", textOf(failure));
        m_writer.endObject();
    }
    m_writer.endArray();
}

void CJsonEvents::writeProcess(TestProcess const& process)
{
    if (process.worker != 0)
    {
        m_writer.key("worker");
        m_writer.value(std::uint64_t(process.worker));
    }
    if (process.usage)
    {
        m_writer.key("peakMemory");
        m_writer.value(process.usage->peakMemory);
        m_writer.key("processorSeconds");
        m_writer.seconds(inMicroseconds(process.usage->processorTime));
    }
    if (process.firstFailure)
    {
        m_writer.key("flaky");
        m_writer.value(true);
        writeText("firstFailure", *process.firstFailure);
    }
}

void CJsonEvents::writeOutput(TestInfo const& test)
{
    m_writer.key("output");
    m_writer.beginArray();
    if (test.item != nullptr)
    {
        for (zel::String const& line : test.item->getLog())
        {
            m_writer.value(toUtf8(line));
        }
    }
    m_writer.endArray();
}

} // namespace qix
