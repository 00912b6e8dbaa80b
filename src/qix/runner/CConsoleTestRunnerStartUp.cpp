#include <qix/CConsoleTestRunner.h>
#include <qix/CTestItemGroup.h>
#include <zel/P.h>

#include "runner/posix/workDirectory.h"
#include "runner/startUp.h"

#include <stdexcept>
#include <string>

namespace qix
{

namespace
{

bool applyArguments(CConsoleTestRunner& runner, int argc, char const** argv)
{
    bool accepted = true;
    for (int i = 0; i < argc; ++i)
    {
        accepted = runner.handleSelectionInput(toSelectionLine(argv[i])) && accepted;
    }
    return accepted;
}

} // namespace

/// The text of the error is part of the interface; the standard library's own has changed over
/// time.
std::string toSelectionLine(char const* argument)
{
    if (argument == nullptr)
    {
        throw std::logic_error("basic_string::_M_construct null not valid");
    }
    return argument;
}

bool selectAndRun(int argc, char const** argv, std::function<void()> const& prepare)
{
    zel::P<CTestItemGroup> const root = CTestItemGroup::global();
    CConsoleTestRunner runner(root.get());
    if (argc <= 0)
    {
        runner.doMenu();
    }
    else if (!applyArguments(runner, argc, argv))
    {
        return false;
    }
    prepare();
    return runner.go();
}

bool CConsoleTestRunner::doMain(int argc, char const** argv)
{
    return enterWorkDirectory() && selectAndRun(argc, argv, [] {});
}

} // namespace qix
