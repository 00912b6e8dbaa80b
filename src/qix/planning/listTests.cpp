#include "planning/listTests.h"

#include <qix/ILocatedItem.h>
#include <qix/ITaggedItem.h>

#include "model/TFacetFinder.h"
#include "text/CJsonWriter.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

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

/// Standard output with a buffer of its own, which is larger than that of the library.
class CListOutput
{
public:
    CListOutput() { m_text.reserve(2 * limit); }
    CListOutput(CListOutput const&) = delete;
    CListOutput& operator=(CListOutput const&) = delete;
    ~CListOutput() { print(); }

    /// What is added to this is printed, at the latest when this ends.
    std::string& text()
    {
        if (m_text.size() >= limit)
        {
            print();
        }
        return m_text;
    }

private:
    static constexpr std::size_t limit = 65536;

    void print()
    {
        std::fwrite(m_text.data(), 1, m_text.size(), stdout);
        m_text.clear();
    }

    std::string m_text;
};

/// Writes tests as JSON. What a test has in common with the one in front of it (its groups, its
/// attributes, its file) is not made once more.
class CTestWriter
{
public:
    explicit CTestWriter(CTestTree const& tree) : m_tree(tree) {}

    /// Adds a comma, and the test.
    void append(std::string& text, NodeIndex test)
    {
        enterGroup(m_tree[test].parent);
        text += m_idHead;
        // There is nothing in an id that JSON does not take as it is.
        text += m_tree.componentOf(test);
        text += m_namesHead;
        ITestItem const& item = *m_tree[test].item;
        appendJsonText(text, item.getName());
        SourceLocation const location = locationOf(item);
        describe(attributesOf(item, location.file));
        text += m_described;
        if (location.file == nullptr)
        {
            text += '}';
        }
        else
        {
            appendLine(text, location.line);
        }
    }

private:
    /// What follows the names, up to the number of the line.
    struct Attributes
    {
        ITestItem::Duration duration = ITestItem::None;
        bool isInteractive = false;
        std::vector<std::string> tags;
        std::optional<std::string_view> file;
    };

    void enterGroup(NodeIndex group)
    {
        if (m_group == group && !m_idHead.empty())
        {
            return;
        }
        m_group = group;
        m_idHead = ",\n{\"id\":\"";
        m_namesHead = "\",\"names\":[";
        if (group == noNode)
        {
            return;
        }
        m_idHead += m_tree.idOf(group) + '.';
        for (std::string const& name : m_tree.namesOf(group))
        {
            appendJsonText(m_namesHead, name);
            m_namesHead += ',';
        }
    }

    static void appendLine(std::string& text, int line)
    {
        std::array<char, 16> digits;
        char* const end = std::to_chars(digits.begin(), digits.end() - 1, line).ptr;
        *end = '}';
        text.append(digits.data(), end + 1);
    }

    SourceLocation locationOf(ITestItem const& item)
    {
        ILocatedItem const* const located = m_located.find(&item);
        return located == nullptr ? SourceLocation{nullptr, 0} : located->getLocation();
    }

    Attributes attributesOf(ITestItem const& item, char const* file)
    {
        Attributes attributes;
        attributes.duration = item.getDuration();
        attributes.isInteractive = item.isInteractive();
        if (ITaggedItem const* const tagged = m_tagged.find(&item))
        {
            attributes.tags = tagged->getTags();
        }
        if (file != nullptr)
        {
            attributes.file = file;
        }
        return attributes;
    }

    void describe(Attributes attributes)
    {
        auto const all = [](Attributes const& a)
        { return std::tie(a.duration, a.isInteractive, a.file, a.tags); };
        if (!m_described.empty() && all(attributes) == all(m_attributes))
        {
            return;
        }
        m_attributes = std::move(attributes);
        if (m_attributes.file)
        {
            m_file = *m_attributes.file;
            m_attributes.file = m_file;
        }
        m_described = describedAttributes();
    }

    std::string describedAttributes()
    {
        m_writer.beginObject();
        m_writer.key("duration");
        m_writer.value(durationText(m_attributes.duration));
        m_writer.key("interactive");
        m_writer.value(m_attributes.isInteractive);
        m_writer.key("tags");
        m_writer.beginArray();
        for (std::string const& tag : m_attributes.tags)
        {
            m_writer.value(tag);
        }
        m_writer.endArray();
        if (m_attributes.file)
        {
            m_writer.key("file");
            m_writer.value(*m_attributes.file);
        }
        // The object has begun with what the test does not have in common.
        std::string const text = "]," + m_writer.take().substr(1);
        return m_attributes.file ? text + ",\"line\":" : text;
    }

    CTestTree const& m_tree;
    CJsonWriter m_writer;
    TFacetFinder<ILocatedItem> m_located;
    TFacetFinder<ITaggedItem> m_tagged;

    NodeIndex m_group = noNode;
    std::string m_idHead;    ///< up to the test's own component; empty at first
    std::string m_namesHead; ///< up to its own name

    Attributes m_attributes;
    std::string m_file;      ///< that of the attributes
    std::string m_described; ///< the attributes; empty at first
};

} // namespace

void listTests(CTestSelection const& selection)
{
    CTestTree const& tree = selection.tree();
    CListOutput output;
    std::string id;
    NodeIndex group = noNode;
    for (NodeIndex const test : listedTests(selection))
    {
        if (id.empty() || tree[test].parent != group)
        {
            group = tree[test].parent;
            id = tree.idOf(test);
        }
        else
        {
            tree.moveTo(test, id);
        }
        output.text() += id;
        output.text() += '\n';
    }
}

void listTestsAsJson(CTestSelection const& selection, std::string const& program)
{
    std::vector<NodeIndex> const tests = listedTests(selection);
    CJsonWriter head;
    head.beginObject();
    head.key("program");
    head.value(program);
    head.key("version");
    head.value(QIX_VERSION);
    head.key("count");
    head.value(static_cast<std::uint64_t>(tests.size()));
    head.key("digest");
    head.value(selection.digest());
    head.key("tests");
    head.beginArray();
    CListOutput output;
    output.text() += head.text();
    CTestWriter writer(selection.tree());
    std::string first;
    for (NodeIndex const test : tests)
    {
        if (test == tests.front())
        {
            writer.append(first, test);
            output.text() += first.substr(1);
        }
        else
        {
            writer.append(output.text(), test);
        }
    }
    output.text() += "\n]}\n";
}

} // namespace qix
