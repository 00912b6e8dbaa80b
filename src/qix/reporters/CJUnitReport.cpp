#include "reporters/CJUnitReport.h"

#include "reporters/posix/hostName.h"
#include "reporters/reportText.h"
#include "reporters/xmlText.h"

#include <string_view>
#include <utility>

namespace qix
{

namespace
{

constexpr char const foot[] = "</testsuite>\n</testsuites>\n";
constexpr std::size_t longestText = 65536;
constexpr std::size_t longestMessage = 1000;

void appendAttribute(std::string& xml, char const* name, std::string_view value)
{
    xml += ' ';
    xml += name;
    xml += "=\"";
    appendXmlText(xml, value);
    xml += '"';
}

std::string attribute(char const* name, std::string_view value)
{
    std::string xml;
    appendAttribute(xml, name, value);
    return xml;
}

std::string firstLine(std::string const& text)
{
    return cutInTheMiddle(text.substr(0, text.find('\n')), longestMessage);
}

std::string outputOf(TestInfo const& test)
{
    std::string output;
    if (test.item != nullptr)
    {
        for (zel::String const& line : test.item->getLog())
        {
            output += toUtf8(line) + '\n';
        }
    }
    return output;
}

/// All that people need to know, since some readers show nothing else.
std::string textOf(TestInfo const& test, TestOutcome const& outcome)
{
    std::string const output = outputOf(test);
    std::string const text = cutInTheMiddle(outcome.message, longestText);
    return output.empty() ? text : text + "\n\nOutput:\n" + cutInTheMiddle(output, longestText);
}

std::string skipped(char const* type, std::string const& reason)
{
    return std::string("<skipped") + attribute("type", type) + attribute("message", reason) + "/>";
}

std::string failed(TestOutcome const& outcome, std::string const& text)
{
    std::string xml = "<failure type=\"failed\"";
    appendAttribute(xml, "message", firstLine(outcome.message));
    xml += '>';
    appendXmlText(xml, text);
    return xml + "</failure>";
}

std::string flaky(std::string const& firstFailure)
{
    return "<flakyFailure type=\"flaky\"" + attribute("message", firstLine(firstFailure)) + "/>";
}

std::string property(char const* name, std::string const& value)
{
    return "<property" + attribute("name", name) + attribute("value", value) + "/>";
}

/// Where the part of an id behind so many names begins.
std::size_t behindNames(std::string_view id, std::size_t names)
{
    std::size_t position = 0;
    for (; names > 0; --names)
    {
        std::size_t const dot = id.find('.', position);
        if (dot == std::string_view::npos)
        {
            return 0;
        }
        position = dot + 1;
    }
    return position;
}

} // namespace

CJUnitReport::CJUnitReport(std::unique_ptr<ILiveFile> file, JUnitSchema schema,
                           ReportContext reportContext)
    : CReport(std::move(reportContext)),
      m_schema(schema),
      m_start(formatUtcNow()),
      m_begin(std::chrono::steady_clock::now()),
      m_file(std::move(file)),
      m_xml(*m_file, head("") + unfinishedRun(), foot),
      m_isComplete(m_xml.start())
{
}

void CJUnitReport::finish()
{
    if (m_isComplete)
    {
        m_isComplete = m_file->replace(head(formatCounts()) + m_xml.visibleRecords() + foot);
    }
}

std::string CJUnitReport::head(std::string const& counts) const
{
    std::string suite = attribute("name", context().program) + counts;
    if (m_schema == JUnitSchema::Plain)
    {
        suite += attribute("timestamp", m_start) + attribute("hostname", hostName());
    }
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n<testsuite" +
                       suite + ">\n<properties>\n<property" + attribute("name", "digest") +
                       attribute("value", context().digest) + "/>\n";
    if (!context().shard.empty())
    {
        text +=
            "<property" + attribute("name", "shard") + attribute("value", context().shard) + "/>\n";
    }
    return text + "</properties>\n";
}

/// It is gone from the complete report.
std::string CJUnitReport::unfinishedRun() const
{
    return "<testcase" + attribute("classname", context().program) +
           attribute("name", "(the whole run)") +
           "><error type=\"unfinished\">The run did not finish, so that tests are missing "
           "here.</error></testcase>\n";
}

std::string CJUnitReport::formatCounts() const
{
    std::string text = attribute("tests", std::to_string(m_counts.tests)) +
                       attribute("failures", std::to_string(m_counts.failures)) +
                       attribute("errors", std::to_string(m_counts.errors));
    if (m_schema == JUnitSchema::Plain)
    {
        text += attribute("skipped", std::to_string(m_counts.skipped)) +
                attribute("time", formatSeconds(std::chrono::steady_clock::now() - m_begin));
    }
    return text;
}

/// The case up to what depends on its end.
void CJUnitReport::appendCase(std::string& xml, Test const& test) const
{
    std::string_view const id = test.id;
    std::size_t const name = behindNames(id, test.groups);
    xml += "<testcase";
    appendAttribute(xml, "classname", name == 0 ? context().program : id.substr(0, name - 1));
    appendAttribute(xml, "name", id.substr(name));
    if (m_schema == JUnitSchema::Plain && test.info->location)
    {
        appendAttribute(xml, "file", test.info->location->file);
        appendAttribute(xml, "line", std::to_string(test.info->location->line));
    }
}

void CJUnitReport::beginTest(Test const& test)
{
    m_running.emplace_back();
    Running& running = m_running.back();
    if (test.info->kind != TestInfo::Group)
    {
        appendCase(running.begin, test);
        m_record = running.begin;
        m_record += "><error type=\"unfinished\">The test did not finish.</error></testcase>\n";
        m_isComplete = m_xml.addForNow(m_record, running.unfinished) && m_isComplete;
    }
}

void CJUnitReport::endTest(Test const& test, TestOutcome const& outcome)
{
    Running const running = std::move(m_running.back());
    m_running.pop_back();
    bool const isReported = test.info->kind != TestInfo::Group || outcome.kind != TestOutcome::Ok;
    if (isReported)
    {
        ++m_counts.tests;
        m_record = running.begin;
        if (m_record.empty())
        {
            appendCase(m_record, test);
        }
        appendAttribute(m_record, "time", formatSeconds(outcome.elapsed));
        TestProcess const process = context().process();
        std::string const content = properties(process) + verdict(test, outcome, process);
        m_record += content.empty() ? "/>\n" : '>' + content + "</testcase>\n";
        m_isComplete = m_xml.add(m_record) && m_isComplete;
    }
    m_xml.hide(running.unfinished);
}

/// Some readers do not take any.
std::string CJUnitReport::properties(TestProcess const& process) const
{
    std::string xml;
    if (m_schema != JUnitSchema::Plain)
    {
        return xml;
    }
    if (process.worker != 0)
    {
        xml += property("worker", std::to_string(process.worker));
    }
    if (process.usage)
    {
        xml += property("peakMemory", std::to_string(process.usage->peakMemory)) +
               property("processorSeconds", formatSeconds(process.usage->processorTime));
    }
    if (process.firstFailure)
    {
        xml += property("flaky", "true");
    }
    return xml.empty() ? xml : "<properties>" + xml + "</properties>";
}

std::string CJUnitReport::verdict(Test const& test, TestOutcome const& outcome,
                                  TestProcess const& process)
{
    switch (outcome.kind)
    {
    case TestOutcome::Ok:
        return process.firstFailure ? flaky(*process.firstFailure) : std::string();
    case TestOutcome::Failed:
        ++m_counts.failures;
        return failed(outcome, textOf(*test.info, outcome));
    case TestOutcome::Aborted:
        ++m_counts.skipped;
        return skipped("aborted", toUtf8(outcome.reason));
    case TestOutcome::Skipped:
        break;
    }
    ++m_counts.skipped;
    return skipped("skipped", toUtf8(outcome.reason));
}

void CJUnitReport::filterTest(Test const& test, Filter filter)
{
    ++m_counts.tests;
    ++m_counts.skipped;
    m_record.clear();
    appendCase(m_record, test);
    m_record += " time=\"0\">" + skipped("filtered", describe(filter)) + "</testcase>\n";
    m_isComplete = m_xml.add(m_record) && m_isComplete;
}

} // namespace qix
