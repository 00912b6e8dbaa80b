#include "planning/listTests.h"

#include <qix/ILocatedItem.h>
#include <qix/ITaggedItem.h>

#include "text/CJsonWriter.h"

#include <cstdio>

namespace qix
{

namespace
{

std::string durationText(ITestItem::Duration duration)
{
    switch (duration)
    {
    case ITestItem::None:
        return "none";
    case ITestItem::Short:
        return "short";
    case ITestItem::Long:
        return "long";
    case ITestItem::VeryLong:
        return "veryLong";
    case ITestItem::Hours:
        return "hours";
    }
    return std::to_string(static_cast<int>(duration));
}

/// The tests that run. One that could not be made is none, and so has nothing to tell.
std::vector<NodeIndex> listedTests(CTestSelection const& selection)
{
    std::vector<NodeIndex> tests;
    for (NodeIndex const test : selection.plan().listTests())
    {
        if (selection.tree()[test].item != nullptr)
        {
            tests.push_back(test);
        }
    }
    return tests;
}

void writeTags(CJsonWriter& writer, ITestItem const& item)
{
    writer.key("tags");
    writer.beginArray();
    if (auto const* const tagged = dynamic_cast<ITaggedItem const*>(&item))
    {
        for (std::string const& tag : tagged->getTags())
        {
            writer.value(tag);
        }
    }
    writer.endArray();
}

void writeLocation(CJsonWriter& writer, ITestItem const& item)
{
    auto const* const located = dynamic_cast<ILocatedItem const*>(&item);
    SourceLocation const location =
        located == nullptr ? SourceLocation{nullptr, 0} : located->getLocation();
    if (location.file != nullptr)
    {
        writer.key("file");
        writer.value(location.file);
        writer.key("line");
        writer.value(static_cast<std::uint64_t>(location.line));
    }
}

void writeTest(CJsonWriter& writer, CTestTree const& tree, NodeIndex test)
{
    ITestItem const& item = *tree[test].item;
    writer.beginObject();
    writer.key("id");
    writer.value(tree.idOf(test));
    writer.key("names");
    writer.beginArray();
    for (std::string const& name : tree.namesOf(test))
    {
        writer.value(name);
    }
    writer.endArray();
    writer.key("duration");
    writer.value(durationText(item.getDuration()));
    writer.key("interactive");
    writer.value(item.isInteractive());
    writeTags(writer, item);
    writeLocation(writer, item);
    writer.endObject();
}

void print(std::string const& text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

} // namespace

void listTests(CTestSelection const& selection)
{
    CTestTree const& tree = selection.tree();
    for (NodeIndex const test : listedTests(selection))
    {
        print(tree.idOf(test) + '\n');
    }
}

void listTestsAsJson(CTestSelection const& selection, std::string const& program)
{
    std::vector<NodeIndex> const tests = listedTests(selection);
    CJsonWriter writer;
    writer.beginObject();
    writer.key("program");
    writer.value(program);
    writer.key("version");
    writer.value(QIX_VERSION);
    writer.key("count");
    writer.value(static_cast<std::uint64_t>(tests.size()));
    writer.key("digest");
    writer.value(selection.digest());
    writer.key("tests");
    writer.beginArray();
    print(writer.take());
    char const* separator = "\n";
    for (NodeIndex const test : tests)
    {
        writeTest(writer, selection.tree(), test);
        print(separator + writer.take());
        separator = ",\n";
    }
    print("\n]}\n");
}

} // namespace qix
