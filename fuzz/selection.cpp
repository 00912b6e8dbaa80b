/// Selection lines: the runner's flags, limit, result and printed text against a model.
///
/// Input: a digit or letter that gives the number of items, a line with the name of each, and
/// then selection lines.

#include "fuzz.h"

#include "../tests/models/SelectionModel.h"

#include <qix/CConsoleTestRunner.h>
#include <qix/CTestItemGroup.h>

#include <stdexcept>

namespace
{

constexpr int mostItems = 24;

/// A runner that shows what selection lines change.
class ShownRunner : public qix::CConsoleTestRunner
{
public:
    using CConsoleTestRunner::CConsoleTestRunner;

    models::Selection selection() const
    {
        return {m_selected, m_maxDuration, m_runInteractive, m_onlyInteractive};
    }
};

std::vector<std::string> readNames(fuzz::Input& input)
{
    std::vector<std::string> names;
    int const count = static_cast<std::uint8_t>(input.byte() - '0') % mostItems;
    for (int i = 0; i < count; ++i)
    {
        names.push_back(input.line());
    }
    return names;
}

zel::P<qix::CTestItemGroup> rootOf(std::vector<std::string> const& names)
{
    zel::P<qix::CTestItemGroup> root = zel::newObj<qix::CTestItemGroup>("");
    for (std::string const& name : names)
    {
        root->addSubItem(zel::newObj<qix::CTestItemGroup>(name));
    }
    return root;
}

struct Seen
{
    bool accepted = true;
    bool isOutOfRange = false;
    std::string printed;
};

Seen apply(ShownRunner& runner, std::string const& line)
{
    fuzz::CapturedStream const output(stdout);
    Seen seen;
    try
    {
        seen.accepted = runner.handleSelectionInput(line);
    }
    catch (std::out_of_range const& e)
    {
        seen.isOutOfRange = true;
        fuzz::require(std::string(e.what()).rfind("basic_string::substr", 0) == 0,
                      "the message begins with basic_string::substr");
    }
    seen.printed = output.text();
    return seen;
}

void compare(Seen const& seen, ShownRunner const& runner, models::SelectionModel const& model)
{
    fuzz::require(seen.isOutOfRange == model.isOutOfRange, "the same exception");
    fuzz::require(seen.isOutOfRange || seen.accepted == model.accepted, "the same result");
    fuzz::requireEqual(seen.printed, model.printed, "the same output");
    fuzz::require(runner.selection() == model.after, "the same selection");
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    fuzz::Input input(data, size);
    std::vector<std::string> const names = readNames(input);
    ShownRunner runner(rootOf(names).get());
    models::SelectionModel model(names, {std::vector<bool>(names.size())});
    do
    {
        std::string const line = input.line();
        model.read(line);
        compare(apply(runner, line), runner, model);
    } while (!input.isAtEnd());
    return 0;
}
