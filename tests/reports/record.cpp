// Writes a JUnit report into a file of memory, and prints each change that a reader of the file
// could see: "replace", "write" and "set" with their bytes in hexadecimal digits, one a line.
#include "reporters/CJUnitReport.h"

#include <zel/P.h>

#include <cstdio>
#include <memory>
#include <string>

using namespace qix;

namespace
{

void printHexadecimal(std::string_view bytes)
{
    for (char const byte : bytes)
    {
        std::printf("%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    }
    std::putchar('\n');
}

class CRecordedFile : public ILiveFile
{
public:
    bool replace(std::string const& bytes) override
    {
        m_bytes = bytes;
        std::fputs("replace ", stdout);
        printHexadecimal(bytes);
        return true;
    }

    void write(std::size_t offset, std::string_view bytes) override
    {
        change("write", offset, bytes);
    }
    void set(std::size_t offset, char byte) override { change("set", offset, {&byte, 1}); }
    std::string read() const override { return m_bytes; }
    std::string getError() const override { return std::string(); }

private:
    void change(char const* how, std::size_t offset, std::string_view bytes)
    {
        m_bytes.replace(offset, bytes.size(), bytes);
        std::printf("%s %zu ", how, offset);
        printHexadecimal(bytes);
    }

    std::string m_bytes;
};

TestInfo info(TestInfo::Kind kind, std::vector<std::string> names)
{
    TestInfo made;
    made.kind = kind;
    made.names = std::move(names);
    made.location = SourceLocation{"a folder/test.cpp", 7};
    return made;
}

TestOutcome outcome(TestOutcome::Kind kind, std::string const& message = "")
{
    TestOutcome made;
    made.kind = kind;
    made.message = message;
    made.reason = zel::String(L"why <\x263a>?");
    return made;
}

/// What is most of a nuisance in XML, every byte among it.
std::string nuisances()
{
    std::string text = "?> ]]> <?q ?> <!-- --> &amp; \xEF\xBF\xBE ";
    for (int byte = 0; byte < 256; ++byte)
    {
        text += static_cast<char>(byte);
    }
    return text;
}

std::string joined(TestInfo const& test)
{
    std::string id;
    for (std::string const& name : test.names)
    {
        id += (id.empty() ? "" : ".") + name;
    }
    return id;
}

void run(ITestListener& report, TestInfo const& test, TestOutcome const& end)
{
    report.onTestBegin(test);
    report.onTestEnd(test, end);
}

void runSome(ITestListener& report)
{
    TestInfo const group = info(TestInfo::Group, {"Group"});
    TestInfo const table = info(TestInfo::Test, {"Group", "table"});
    report.onTestBegin(group);
    run(report, info(TestInfo::Test, {"Group", "ok"}), outcome(TestOutcome::Ok));
    run(report, info(TestInfo::Test, {"Group", "nuisances"}),
        outcome(TestOutcome::Failed, nuisances()));
    report.onTestBegin(table);
    run(report, info(TestInfo::SubTest, {"Group", "table", "row"}), outcome(TestOutcome::Skipped));
    // Longer than the room that a file has at first, while other tests have not finished.
    run(report, info(TestInfo::SubTest, {"Group", "table", "long"}),
        outcome(TestOutcome::Failed, std::string(9000, 'x')));
    run(report, info(TestInfo::SubTest, {"Group", "table", "behind"}), outcome(TestOutcome::Ok));
    report.onTestEnd(table, outcome(TestOutcome::Aborted));
    report.onTestFiltered(info(TestInfo::Test, {"Group", "long"}), ITestListener::Filter::Duration);
    report.onTestEnd(group, outcome(TestOutcome::Ok));
    run(report, info(TestInfo::Test, {"alone"}), outcome(TestOutcome::Failed, "first\nsecond"));
}

} // namespace

int main(int argc, char** argv)
{
    JUnitSchema const schema =
        argc > 1 && std::string(argv[1]) == "jenkins" ? JUnitSchema::Jenkins : JUnitSchema::Plain;
    ReportContext context;
    context.program = "suite";
    context.digest = "0123456789abcdef";
    context.shard = "2/5";
    context.idOf = joined;
    auto const report =
        zel::newObj<CJUnitReport>(std::make_unique<CRecordedFile>(), schema, context);
    report->onRunBegin(RunInfo());
    runSome(*report);
    report->onRunEnd(RunCounts());
    report->finish();
}
