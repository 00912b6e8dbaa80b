// A test executable that is built in many ways, with plug-ins as its arguments. It checks that
// all modules share one root group and agree about the types of what is thrown between them.

#include <qix/qix.h>
#include <zel/zel.h>

#include "TestOfFunction.h"
#include "check.h"

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>

#include <dlfcn.h>

namespace
{

using check::that;

int g_runs = 0;

/// A runner of the executable's own, to see the counts.
class CountingRunner : public qix::CConsoleTestRunner
{
public:
    using CConsoleTestRunner::CConsoleTestRunner;

    bool hasCounted(int ok, int failed, int aborted, int skipped) const
    {
        return m_nOk == ok && m_nFailed == failed && m_nAborted == aborted && m_nSkipped == skipped;
    }
};

void registerTests()
{
    auto const root = qix::CTestItemGroup::global();
    root->addSubItem(zel::newObj<TestOfFunction>("success", [] { ++g_runs; }));
    root->addSubItem(
        zel::newObj<TestOfFunction>("skipped", [] { throw qix::CTestSkippedException(); }));
    root->addSubItem(zel::newObj<TestOfFunction>("aborted", []
                                                 { throw qix::CTestAbortedException("stopped"); }));
    root->addSubItem(zel::newObj<TestOfFunction>("failed", [] { throw zel::CError("failed"); }));
}

template <typename Function>
Function* find(void* plugin, char const* name)
{
    void* const symbol = dlsym(plugin, name);
    if (symbol == nullptr)
    {
        throw std::runtime_error(std::string("the plug-in lacks ") + name);
    }
    return reinterpret_cast<Function*>(symbol);
}

template <typename Exception, typename Work>
bool throws(Work const& work)
{
    try
    {
        work();
    }
    catch (Exception const&)
    {
        return true;
    }
    catch (...)
    {
    }
    return false;
}

void checkPlugin(void* plugin)
{
    auto* const throwFromPlugin = find<void()>(plugin, "throwFromPlugin");
    that(find<qix::ITestItem*()>(plugin, "rootOfPlugin")() == qix::CTestItemGroup::global().get(),
         "the plug-in and the executable share one root group");
    that(throws<qix::CTestSkippedException>(throwFromPlugin),
         "what a plug-in throws is caught by its type");
    that(throws<zel::CError>(throwFromPlugin), "what a plug-in throws is caught by its base");
}

void checkWhatTheLibraryThrows()
{
    zel::CInvalidArgError const error("f", "x", zel::CProps());
    zel::CError const& asError = error;
    that(throws<zel::CInvalidArgError>([&] { asError.throwClone(); }),
         "what the library throws is caught by its type");
    that(throws<zel::CError>([&] { asError.throwClone(); }),
         "what the library throws is caught by its base");
    that(throws<std::exception>([&] { asError.throwClone(); }),
         "what the library throws is caught as std::exception");
    that(dynamic_cast<zel::CInvalidArgError*>(asError.clone().get()) != nullptr,
         "a clone made by the library can be cast");
    setenv("ZEL_GLOBALS_TEST", "\xff", 1);
    that(throws<zel::CError>(
             [] { zel::CCachedEnvVars::get()->getVar("ZEL_GLOBALS_TEST", zel::String()); }),
         "an error made in the library is caught by its type");
}

/// The library takes the root by itself: it has what the other modules have registered.
void checkRunOfTheLibrary(int plugins)
{
    int const runsBefore = g_runs;
    char const* everything = "*";
    that(!qix::CConsoleTestRunner::doMain(1, &everything), "the failing tests fail the run");
    that(g_runs == runsBefore + 1, "the library runs what the executable has registered");

    CountingRunner runner(qix::CTestItemGroup::global().get());
    runner.toggleAll();
    that(!runner.go(), "the failing tests fail the run");
    int const modules = 1 + plugins;
    that(runner.hasCounted(modules + plugins, modules, modules, modules),
         "the library knows the types of what its tests throw");
}

void* load(std::string const& path)
{
    bool const looksIntoItselfFirst = path.find("deepbind") != std::string::npos;
    void* const plugin =
        dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | (looksIntoItselfFirst ? RTLD_DEEPBIND : 0));
    if (plugin == nullptr)
    {
        throw std::runtime_error(dlerror());
    }
    return plugin;
}

void checkAll(int plugins, char** paths)
{
    registerTests();
    check::safeGlobals();
    checkWhatTheLibraryThrows();
    void* handles[8] = {};
    for (int i = 0; i < plugins; ++i)
    {
        handles[i] = load(paths[i]);
        checkPlugin(handles[i]);
    }
    checkRunOfTheLibrary(plugins);
    for (int i = 0; i < plugins; ++i)
    {
        that(find<int()>(handles[i], "runsOfPlugin")() == 2,
             "each run includes the plug-in's tests");
    }
}

} // namespace

int& check::failures()
{
    static int count = 0;
    return count;
}

int main(int argc, char** argv)
{
    try
    {
        checkAll(argc - 1, argv + 1);
    }
    catch (std::exception const& e)
    {
        that(false, e.what());
    }
    check::safeGlobalAtExit(check::failures() == 0 ? 0 : 1);
    return 0;
}
