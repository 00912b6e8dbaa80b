// Tests of all kinds of names, by hand and by macros, each of which notes that it has run.
#include <CFunctionTestItem.h>

#include <qix/qix.h>
#include <qix/test.h>
#include <zel/CBase.h>
#include <zel/P.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using Item = zel::P<qix::ITestItem>;
using Items = std::vector<Item>;
using test::CFunctionTestItem;

void note(std::string const& what)
{
    if (char const* const file = std::getenv("OPTIONS_RAN"))
    {
        std::ofstream(file, std::ios::app) << what << '\n';
    }
}

bool isWanted(char const* variable, std::string const& what)
{
    char const* const value = std::getenv(variable);
    return value != nullptr && what == value;
}

void work(std::string const& what)
{
    note(what);
    if (char const* const name = std::getenv("OPTIONS_TELL"))
    {
        char const* const value = std::getenv(name);
        note(name + std::string(value == nullptr ? " is not set" : " is set"));
    }
    if (isWanted("OPTIONS_KILL", what))
    {
        raise(SIGKILL);
    }
    if (isWanted("OPTIONS_SKIP", what))
    {
        throw qix::CTestSkippedException();
    }
    if (isWanted("OPTIONS_FAIL", what))
    {
        throw std::runtime_error("as wanted");
    }
}

/// Notes its number, which is that of its making.
Item leaf(std::string const& name, qix::ITestItem::Duration duration = qix::ITestItem::Short)
{
    static int made = 0;
    std::string const number = std::to_string(made++);
    return zel::newObj<CFunctionTestItem>(
        name, [number](CFunctionTestItem&, qix::ITestRunner&) { work(number); }, duration);
}

Item group(std::string const& name, Items const& items)
{
    auto result = zel::newObj<qix::CTestItemGroup>(name);
    for (Item const& item : items)
    {
        result->addSubItem(item);
    }
    return result;
}

/// Runs its children itself: from the last to the first, and tells the runner of a row between
/// them. It makes them anew each time it is asked.
class COwnGroup : public zel::CBase, public virtual qix::ITestItem
{
public:
    std::string getName() const override { return "own"; }
    Duration getDuration() const override { return None; }
    bool isInteractive() const override { return false; }
    bool containsAnyInteractive() const override { return false; }
    void run(qix::ITestRunner* runner) override
    {
        Items items;
        getSubItems(items);
        for (auto item = items.rbegin(); item != items.rend(); ++item)
        {
            note("before");
            runner->runTestItem(item->get());
            if (runner->beginSubTest("row", Short, false, false))
            {
                note("row");
                runner->endSubTest_Success();
            }
        }
    }
    void getSubItems(Items& out) override
    {
        out.clear();
        for (std::string const name : {"first", "second"})
        {
            out.push_back(zel::newObj<CFunctionTestItem>(
                name, [name](CFunctionTestItem&, qix::ITestRunner&) { work("own." + name); }));
        }
    }
    void log(zel::String const& line) override { m_lines.push_back(line); }
    std::vector<zel::String> const& getLog() const override { return m_lines; }

private:
    std::vector<zel::String> m_lines;
};

/// A test of runners runs one in a folder of its own.
void runInFolder(std::string const& name)
{
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::create_directory(name);
    std::filesystem::current_path(name);
    qix::CConsoleTestRunner runner(group("", {leaf("ofNestedRun")}).get());
    runner.handleSelectionInput("*");
    runner.go();
    std::filesystem::current_path(before);
}

Items namesOfEachByte()
{
    Items items;
    for (int byte = 1; byte < 256; ++byte)
    {
        items.push_back(leaf(std::string(1, static_cast<char>(byte))));
    }
    return items;
}

Items allItems()
{
    std::string everyByte;
    for (int byte = 1; byte < 256; ++byte)
    {
        everyByte += static_cast<char>(byte);
    }
    return {group("bytes", namesOfEachByte()),
            leaf(everyByte),
            group(everyByte, {leaf(everyByte)}),
            leaf(""),
            group("", {leaf(""), leaf(""), group("", {leaf("")})}),
            leaf("twice"),
            leaf("twice"),
            group("twice", {leaf("a"), leaf("a"), leaf("a#2"), leaf("a.b")}),
            leaf("[NON-UTF-8-BYTE-0xFF]"),
            leaf(std::string(1000000, 'm') + "\xC3\xBC"),
            group("a", {leaf("b.c"), group("b", {leaf("c")})})};
}

} // namespace

QIX_TEST(macros.inner, table)
{
    work("table");
    for (char const* const row : {"one", "two", "two", "r w"})
    {
        qix::subTest(row, [row] { work(std::string("row ") + row); });
    }
}

QIX_TEST(macros.inner, plain)
{
    work("plain");
    if (std::getenv("OPTIONS_NESTED") != nullptr)
    {
        runInFolder("nested");
    }
}

QIX_TEST(macros, lasting, Long)
{
    work("lasting");
}

QIX_TEST(macros, tagged, Tags("net", "in \"quotes\""))
{
    work("tagged");
}

QIX_TEST(macros, asking, Interactive)
{
    work("asking");
}

int main(int argc, char** argv)
{
    if (std::getenv("OPTIONS_OWN") != nullptr)
    {
        qix::CTestItemGroup::global()->addSubItem(zel::newObj<COwnGroup>());
    }
    else
    {
        for (Item const& item : allItems())
        {
            qix::CTestItemGroup::global()->addSubItem(item);
        }
    }
    return qix::runMain(argc, argv);
}
